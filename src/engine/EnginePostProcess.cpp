#include <cstring>

#include "common/Log.h"
#include "engine/PostProcessingInFlight.h"
#include "engine/ResultCodes.h"
#include "engine/StartParameters.h"
#include "engine/TempDirectory.h"
#include "engine/kelOBWEngine.h"

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";
constexpr int kProgressStatus = 0;

/// A listener that throws must not end the process.
void callListener(OBWEngineListener* listener, int percent) noexcept {
    if (listener == nullptr)
        return;
    try {
        listener->onProgress(kProgressStatus, percent);
    } catch (...) {
        logError("kelOBWEngine::onOBWEngineDoPostProcess : listener failed at %d", percent);
    }
}

}  // namespace

void* kelOBWEngine::onOBWEngineDoPostProcess(void* engine) {
    const PostProcessingInFlight inFlight;
    auto* const self = static_cast<kelOBWEngine*>(engine);
    self->mPostProcThread = pthread_self();
    self->objectsLock.lock();
    try {
        self->postProcess();
    } catch (...) {
        // Nothing throws once the locks have been given back.
        self->failPostProcess();
        logError("kelOBWEngine::onOBWEngineDoPostProcess : a component or an allocation failed");
    }
    return nullptr;
}

/// Ends with both locks given back, on every path.
void kelOBWEngine::postProcess() {
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess -- Enter : numCapture=%d, totalNumFrames = %d",
            numCapture.load(), totalNumFrames.load());
    const Stopwatch time;
    if (!finishMP4())
        return;
    notifyProgress(15);
    time.log("kelOBWEngine:: onOBWEngineDoPostProcess OBW_PP_ACC MP4_Resize_PP_Time_acc");
    if (pOBWKDXMetaInfo == nullptr) {
        logError("kelOBWEngine::onOBWEngineDoPostProcess : pOBWKDXMetaInfo is NULL");
        failPostProcess();
        logError("kelOBWEngine::onOBWEngineDoPostProcess : IA_OBW_RESULT_FAIL-11");
        return;
    }
    notifyProgress(30);
    if (doSmoothingAndFillMetadata(this) != OBW_RESULT_OK) {
        logError(
            "kelOBWEngine::onOBWEngineDoPostProcess : doSmoothingAndFillMetadata ERROR!!!!!!!!!");
        return;
    }
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess : doSmoothingAndFillMetadata DONE ");
    freeAfterPostProcess();
    notifyProgress(90);
    removeTempDirAfterPostProcess();
    time.log("kelOBWEngine:: onOBWEngineDoPostProcess OBW_PP_ACC StopTime_acc");
    resetLocalVariables();
    time.log("kelOBWEngine:: onOBWEngineDoPostProcess OBW_PP_ACC StopTime_full_acc");
    OBWEngineListener* const listener = mListener;
    endPostProcess();
    // From here on the engine may be in use elsewhere, or gone.
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess : stateLock-unlock DONE");
    callListener(listener, 100);
}

bool kelOBWEngine::finishMP4() {
    if (frameProcessor == nullptr) {
        logError("kelOBWEngine::onOBWEngineDoPostProcess frameProcessor is NULL");
        return true;
    }
    const int status = frameProcessor->stop();
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess : Mp4EncStatus = %d ", status);
    frameProcessor.reset();
    if (status == 0)
        return true;
    logError("kelOBWEngine::onOBWEngineDoPostProcess : ResizeFrameProcessor->stop FAILED ");
    failPostProcess();
    logError("kelOBWEngine::onOBWEngineDoPostProcess : FAILURE CASE : StateLock.unLock DONE ");
    return false;
}

int kelOBWEngine::doSmoothingAndFillMetadata(kelOBWEngine* engine) {
    const Stopwatch time;
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

void kelOBWEngine::freeAfterPostProcess() {
    {
        const std::lock_guard finder(finderLock);
        if (p_mFindTransform != nullptr) {
            p_mFindTransform->Release();
            logInfo("kelOBWEngine::onOBWEngineDoPostProcess : p_mFindTransform Release DONE ");
            ifindTransform::Destroy(p_mFindTransform.release());
            logInfo("kelOBWEngine::onOBWEngineDoPostProcess : p_mFindTransform Destroy DONE ");
        }
    }
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess : free memory pOBWKDXMetaInfo = %p",
            static_cast<void*>(pOBWKDXMetaInfo.get()));
    pOBWKDXMetaInfo.reset();
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess : free memory pFrameInfo = %p",
            static_cast<void*>(pFrameInfo.get()));
    pFrameInfo.reset();
}

void kelOBWEngine::removeTempDirAfterPostProcess() {
    logInfo("kelWideReelEngine::onWREngineDoPostProcess : call removeTempDir");
    if (!differsFromLocalTmpDir(tmpDirName)) {
        if (removeTempDir(tmpDirName) == OBW_RESULT_OK)
            logInfo("kelOBWEngine : onWREngineDoPostProcess: removeTempDir SUCCESS");
        else
            logInfo("kelOBWEngine : onWREngineDoPostProcess: removeTempDir FALIED!!");
        return;
    }
    logError(
        "kelOBWEngine::onWREngineDoPostProcess REMOVE_TEMP_DIR_AFTER_END, ERROR!!!!!!! invlaid "
        "path");
    logError("kelOBWEngine::onWREngineDoPostProcess REMOVE_TEMP_DIR_AFTER_END, tmpDirName=%s",
             loggablePath(tmpDirName, "[Line: 884]"));
    takeLocalTmpDir();
    if (removeTempDir(tmpDirName) == OBW_RESULT_OK)
        logInfo("kelOBWEngine : onWREngineDoPostProcess : removeTempDir SUCCESS");
    else
        logInfo("kelOBWEngine : onWREngineDoPostProcess : removeTempDir FALIED!!");
}

void kelOBWEngine::failPostProcess() {
    resetLocalVariables();
    endPostProcess();
}

void kelOBWEngine::endPostProcess() {
    objectsLock.unlock();
    engineState = OBW_STATE_DONE;
    pthread_mutex_unlock(&stateLock);
}

void kelOBWEngine::notifyProgress(int percent) {
    callListener(mListener, percent);
}
