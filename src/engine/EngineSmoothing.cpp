#include <cstring>

#include "common/Log.h"
#include "engine/ResultCodes.h"
#include "engine/StartParameters.h"
#include "engine/kelOBWEngine.h"

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";

}  // namespace

int kelOBWEngine::doSmoothingAndFillMetadata(kelOBWEngine* engine) {
    const orbitwalk::Stopwatch time;
    __kelOBWKDXMetaData& record = *engine->pOBWKDXMetaInfo;
    record.maxFrames = OBW_MAX_FRAMES;
    record.viewAngleMaxFrames = OBW_MAX_BORDER_FRAMES;
    record.leftBorderFrames = 0;
    record.rightBorderFrames = 0;
    // A cleanup that came between stop and this thread has taken the stabiliser away.
    constexpr int noStabilizer = 2;
    iVideoStabilization* const stabilizer = engine->p_mVideoStabilizer.get();
    const auto& [top, left, bottom, right] = engine->mStabParam;
    int status = stabilizer == nullptr
                     ? noStabilizer
                     : stabilizer->doStabilization(engine->orientation, record.captureDirection,
                                                   top, left, bottom, right, true);
    logInfo("kelOBWEngine::doSmoothingAndFillMetadata -- doStabilization done : stat = %d", status);
    if (status != 0) {
        logError(
            "kelOBWEngine::doSmoothingAndFillMetadata : VideoStabilizer->doStabilization FAILED ");
        engine->failPostProcess();
        logError("kelOBWEngine::doSmoothingAndFillMetadata : IA_OBW_RESULT_FAIL-0");
        return OBW_RESULT_POSTPROCESS_FAIL;
    }
    engine->notifyProgress(45);
    engine->fillRecordHeader();
    status = stabilizer->getStabilizationInfo(&record, true);
    logInfo("kelOBWEngine::doSmoothingAndFillMetadata -- getStabilizationInfo done : stat = %d",
            status);
    logInfo("kelOBWEngine::doSmoothingAndFillMetadata -- VIEW ANGLE CORRECTION ENABLED");
    if (status != 0) {
        logError(
            "kelOBWEngine::doSmoothingAndFillMetadata : VideoStabilizer->getStabilizationInfo "
            "FAILED ");
        engine->failPostProcess();
        logError("kelOBWEngine::doSmoothingAndFillMetadata : IA_OBW_RESULT_FAIL-1");
        return OBW_RESULT_POSTPROCESS_FAIL;
    }
    engine->notifyProgress(60);
    time.log("kelOBWEngine:: doSmoothingAndFillMetadata OBW_PP_ACC Smoothing_Time_acc");
    printOBWMetaInfo(&record);
    return engine->handOutRecord();
}

void kelOBWEngine::fillRecordHeader() {
    __kelOBWKDXMetaData& record = *pOBWKDXMetaInfo;
    record.numFrames = encodedFrameNum;
    RenderRange range{startFrmIndex, endFrmIndex};
    if (!isValidRange(range, record.numFrames)) {
        logInfo("Start and End Indices are invalid [%d %d]. Setting to defaults ", range.start,
                range.end);
        range = {0, record.numFrames};
    }
    record.startIndex = range.start;
    record.endIndex = range.end;
    logInfo(
        "kelOBWEngine::doSmoothingAndFillMetadata : StartIndx = %d EndIndx = %d NumFrames = %d ",
        record.startIndex, record.endIndex, record.numFrames);
    record.frontCameraFlipped = frontCamFlipped(mInitParam);
    logInfo("kelOBWEngine::doSmoothingAndFillMetadata :  flipped=%d, orientation=%d ",
            record.frontCameraFlipped, orientation);
    if (record.frontCameraFlipped != 0)
        logInfo(
            "kelOBWEngine::doSmoothingAndFillMetadata : flip matrix for front camera flip mode");
}

int kelOBWEngine::handOutRecord() {
    if (pCallerMetaInfo == nullptr) {
        logError("kelOBWEngine::doSmoothingAndFillMetadata : camera FWK WR info buffer is NULL");
        failPostProcess();
        logError("kelOBWEngine::doSmoothingAndFillMetadata : IA_OBW_RESULT_FAIL-2");
        return OBW_RESULT_POSTPROCESS_FAIL;
    }
    logInfo("kelOBWEngine::doSmoothingAndFillMetadata -- send WR metadata, size = %d, %d",
            metaInfoSize, static_cast<int>(sizeof(__kelOBWKDXMetaData)));
    std::memcpy(pCallerMetaInfo, pOBWKDXMetaInfo.get(), static_cast<std::size_t>(metaInfoSize));
    notifyProgress(75);
    p_mVideoStabilizer->Release();
    p_mVideoStabilizer.reset();
    return OBW_RESULT_OK;
}
