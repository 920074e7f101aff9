#include <cstring>

#include "common/Log.h"
#include "common/Stopwatch.h"
#include "engine/MotionRecord.h"
#include "engine/Sweep.h"

// The second half of a sweep's way, on the post-processing thread.

namespace orbitwalk {

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";
constexpr int kProgressStatus = 0;
constexpr int kNoMargin = 0;
constexpr int kNoStabilizer = 2;

}  // namespace

PostProcessEnd Sweep::postProcess(const CaptureSettings& settings) {
    const MutexLock hold(mObjects.mLock);
    PostProcessEnd end = PostProcessEnd::threw;
    try {
        end = finish(settings);
    } catch (...) {
        logError("kelOBWEngine::onOBWEngineDoPostProcess : a component or an allocation failed");
        logCause(kLogTag, "kelOBWEngine::onOBWEngineDoPostProcess");
    }
    mObjects.resetLocalVariables();
    return end;
}

PostProcessEnd Sweep::finish(const CaptureSettings& settings) {
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess -- Enter : numCapture=%d, totalNumFrames = %d",
            mStatus.numCapture.load(), mStatus.totalNumFrames.load());
    const Stopwatch time;
    if (!finishMP4())
        return PostProcessEnd::noMP4;
    notifyProgress(15);
    time.log("kelOBWEngine:: onOBWEngineDoPostProcess OBW_PP_ACC MP4_Resize_PP_Time_acc");
    if (mObjects.pOBWKDXMetaInfo == nullptr) {
        logError("kelOBWEngine::onOBWEngineDoPostProcess : pOBWKDXMetaInfo is NULL");
        return PostProcessEnd::noRecord;
    }
    notifyProgress(30);
    if (const PostProcessEnd end = doSmoothingAndFillMetadata(settings);
        end != PostProcessEnd::done)
        return end;
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess : doSmoothingAndFillMetadata DONE ");
    free();
    notifyProgress(90);
    logInfo("kelWideReelEngine::onWREngineDoPostProcess : call removeTempDir");
    mObjects.mTempDirectory.removeAtEnd({"onWREngineDoPostProcess", 884, ": "});
    time.log("kelOBWEngine:: onOBWEngineDoPostProcess OBW_PP_ACC StopTime_acc");
    time.log("kelOBWEngine:: onOBWEngineDoPostProcess OBW_PP_ACC StopTime_full_acc");
    return PostProcessEnd::done;
}

bool Sweep::finishMP4() {
    if (mObjects.frameProcessor == nullptr) {
        logError("kelOBWEngine::onOBWEngineDoPostProcess frameProcessor is NULL");
        return true;
    }
    const int status = mObjects.frameProcessor->stop();
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess : Mp4EncStatus = %d ", status);
    mObjects.frameProcessor.reset();
    if (status != 0)
        logError("kelOBWEngine::onOBWEngineDoPostProcess : ResizeFrameProcessor->stop FAILED ");
    return status == 0;
}

PostProcessEnd Sweep::doSmoothingAndFillMetadata(const CaptureSettings& settings) {
    const Stopwatch time;
    __kelOBWKDXMetaData& record = *mObjects.pOBWKDXMetaInfo;
    record.maxFrames = OBW_MAX_FRAMES;
    record.viewAngleMaxFrames = OBW_MAX_BORDER_FRAMES;
    record.leftBorderFrames = 0;
    record.rightBorderFrames = 0;
    // A cleanup that came between stop and this thread has taken the stabiliser away.
    iVideoStabilization* const stabilizer = mObjects.p_mVideoStabilizer.get();
    int status = stabilizer == nullptr ? kNoStabilizer
                                       : stabilizer->doStabilization(
                                             mObjects.orientation, record.captureDirection,
                                             kNoMargin, kNoMargin, kNoMargin, kNoMargin, true);
    logInfo("kelOBWEngine::doSmoothingAndFillMetadata -- doStabilization done : stat = %d", status);
    if (status != 0) {
        logError(
            "kelOBWEngine::doSmoothingAndFillMetadata : VideoStabilizer->doStabilization FAILED ");
        return PostProcessEnd::noSmoothing;
    }
    notifyProgress(45);
    fillHeader(record, settings.param, encodedFrameNum, mRange, mObjects.orientation);
    status = stabilizer->getStabilizationInfo(&record, true);
    logInfo("kelOBWEngine::doSmoothingAndFillMetadata -- getStabilizationInfo done : stat = %d",
            status);
    logInfo("kelOBWEngine::doSmoothingAndFillMetadata -- VIEW ANGLE CORRECTION ENABLED");
    if (status != 0) {
        logError(
            "kelOBWEngine::doSmoothingAndFillMetadata : VideoStabilizer->getStabilizationInfo "
            "FAILED ");
        return PostProcessEnd::noMatrices;
    }
    notifyProgress(60);
    time.log("kelOBWEngine:: doSmoothingAndFillMetadata OBW_PP_ACC Smoothing_Time_acc");
    printOBWMetaInfo(&record);
    return handOutRecord(settings);
}

PostProcessEnd Sweep::handOutRecord(const CaptureSettings& settings) {
    if (settings.pCallerMetaInfo == nullptr) {
        logError("kelOBWEngine::doSmoothingAndFillMetadata : camera FWK WR info buffer is NULL");
        return PostProcessEnd::noBuffer;
    }
    logInfo("kelOBWEngine::doSmoothingAndFillMetadata -- send WR metadata, size = %d, %d",
            settings.metaInfoSize, static_cast<int>(sizeof(__kelOBWKDXMetaData)));
    std::memcpy(settings.pCallerMetaInfo, mObjects.pOBWKDXMetaInfo.get(),
                static_cast<std::size_t>(settings.metaInfoSize));
    notifyProgress(75);
    mObjects.p_mVideoStabilizer->Release();
    mObjects.p_mVideoStabilizer.reset();
    return PostProcessEnd::done;
}

void Sweep::free() {
    mObjects.freeFinder("onOBWEngineDoPostProcess");
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess : free memory pOBWKDXMetaInfo = %p",
            static_cast<void*>(mObjects.pOBWKDXMetaInfo.get()));
    mObjects.pOBWKDXMetaInfo.reset();
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess : free memory pFrameInfo = %p",
            static_cast<void*>(pFrameInfo.get()));
    forget();
}

void Sweep::notifyProgress(int percent) {
    mListener.call(kProgressStatus, percent);
}

void logUnlocked(PostProcessEnd end) {
    switch (end) {
        case PostProcessEnd::done:
            logInfo("kelOBWEngine::onOBWEngineDoPostProcess : stateLock-unlock DONE");
            break;
        case PostProcessEnd::noMP4:
            logError(
                "kelOBWEngine::onOBWEngineDoPostProcess : FAILURE CASE : StateLock.unLock DONE ");
            break;
        case PostProcessEnd::noRecord:
            logError("kelOBWEngine::onOBWEngineDoPostProcess : IA_OBW_RESULT_FAIL-11");
            break;
        case PostProcessEnd::noSmoothing:
        case PostProcessEnd::noMatrices:
        case PostProcessEnd::noBuffer:
            logError("kelOBWEngine::doSmoothingAndFillMetadata : IA_OBW_RESULT_FAIL-%d",
                     static_cast<int>(end) - static_cast<int>(PostProcessEnd::noSmoothing));
            logError(
                "kelOBWEngine::onOBWEngineDoPostProcess : doSmoothingAndFillMetadata "
                "ERROR!!!!!!!!!");
            break;
        case PostProcessEnd::threw:
            break;
    }
}

}  // namespace orbitwalk
