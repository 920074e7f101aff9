#include "engine/WorkingObjects.h"

#include "common/Log.h"
#include "common/Stopwatch.h"
#include "engine/MotionRecord.h"
#include "frameproc/FrameSize.h"

namespace orbitwalk {

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";

FrameSize sizeOf(const CaptureSettings& settings) {
    return {settings.param.imageWidth, settings.param.imageHeight};
}

}  // namespace

void WorkingObjects::takeTempDirectory() {
    const MutexLock hold(mLock);
    mTempDirectory.take();
    mTempDirectory.logPaths();
}

int WorkingObjects::create(const CaptureSettings& settings) try {
    const MutexLock hold(mLock);
    pOBWKDXMetaInfo = beginRecord(settings.param);
    if (const int result = mTempDirectory.renew(); result != OBW_RESULT_OK)
        return result;
    createFrameProcessor(settings);
    if (const int result = createStabilizer(sizeOf(settings)); result != OBW_RESULT_OK)
        return result;
    if (const int result = createFinder(sizeOf(settings)); result != OBW_RESULT_OK)
        return result;
    resetLocalVariables();
    return OBW_RESULT_OK;
} catch (...) {
    logError("kelOBWEngine::start : ERROR! a component or an allocation failed\n");
    logCause(kLogTag, "kelOBWEngine::start");
    return OBW_RESULT_FAIL;
}

void WorkingObjects::createFrameProcessor(const CaptureSettings& settings) {
    frameProcessor.reset();
    const OBW_FrameProcessor::CreationParams params{
        .width = settings.param.imageWidth,
        .height = settings.param.imageHeight,
        .numBuffers = kFrameSlots,
        .bufferPool = nullptr,
        .mp4File = mTempDirectory.mp4File(),
        .mp4TempDir = mTempDirectory.path(),
        .mp4FileHandle = settings.fpMP4,
        .mp4FileHandleId = -1,
    };
    logInfo("kelOBWEngine::start Creating  OBW_FrameProcessor with WxH = %dx%d ", params.width,
            params.height);
    {
        const ScopedTiming timing("kelOBWEngine::start profile create_FrameProcessor_acc");
        frameProcessor = std::make_unique<OBW_FrameProcessor>(params);
    }
    frameProcessor->start();
}

int WorkingObjects::createStabilizer(FrameSize size) {
    logInfo("kelOBWEngine::start create stabilizer");
    p_mVideoStabilizer.reset(iVideoStabilization::Create());
    const int status = p_mVideoStabilizer->Initialize(size.width, size.height);
    logInfo("kelOBWEngine::start create stabilizer and initialize done, stat=%d", status);
    if (status != 0) {
        logInfo("kelOBWEngine : start : VideoStabilizer Initialize FALIED, returning");
        return OBW_RESULT_FAIL;
    }
    return OBW_RESULT_OK;
}

int WorkingObjects::createFinder(FrameSize size) {
    const MutexLock hold(mFinderLock);
    logInfo("kelOBWEngine::start create FindTransform");
    p_mFindTransform.reset(ifindTransform::Create());
    const int status = p_mFindTransform->Initialize(size.width, size.height);
    logInfo("kelOBWEngine::start create FindTransform and initialize done, status=%d", status);
    if (status != 0) {
        logInfo("kelOBWEngine : start : FIndTransform Initialize FALIED, returning");
        return OBW_RESULT_FAIL;
    }
    return OBW_RESULT_OK;
}

WorkingObjects::Intake WorkingObjects::queueFrame(unsigned char* frame, FrameSize size) try {
    const MutexLock hold(mLock);
    if (frame == nullptr || frameProcessor == nullptr)
        return Intake::nothingToQueue;
    const Stopwatch copyTime;
    if (frameProcessor->sendFrame(frame, yuv420FrameBytes(size.width, size.height)) == 0)
        return Intake::refused;
    copyTime.log("kelOBWEngine::setFrameInfo profile memcopy : input sendFrame_acc");
    return Intake::queued;
} catch (...) {
    logCause(kLogTag, "kelOBWEngine::setFrameInfo");
    return Intake::refused;
}

int WorkingObjects::measure(unsigned char* frame, float* x, float* y, float* a) {
    int status = OBW_RESULT_FAIL;
    try {
        const MutexLock hold(mFinderLock);
        if (p_mFindTransform == nullptr) {
            logError("kelOBWEngine::computeTrajectory : ERROR! no FindTransform\n");
            return OBW_RESULT_FAIL;
        }
        const ScopedTiming timing("kelOBWEngine::computeTrajectory : computeTrajectory_time");
        status = p_mFindTransform->getTrajectory(frame, x, y, a);
    } catch (...) {
        logError("kelOBWEngine::computeTrajectory : ERROR! the measurement failed\n");
        logCause(kLogTag, "kelOBWEngine::computeTrajectory");
    }
    logInfo("kelOBWEngine::computeTrajectory : Trajectory = [ %f, %f, %f ] ",
            static_cast<double>(*x), static_cast<double>(*y), static_cast<double>(*a));
    return status == 0 ? OBW_RESULT_OK : OBW_RESULT_FAIL;
}

void WorkingObjects::memCleanupForCancel() {
    const MutexLock hold(mLock);
    logInfo("kelOBWEngine::memCleanupForCancel ENTER");
    resetLocalVariables();
    abortFrameProcessor();
    logInfo("kelOBWEngine::memCleanupForCancel : free memory pOBWKDXMetaInfo");
    pOBWKDXMetaInfo.reset();
    freeFinder("memCleanupForCancel");
    freeStabilizerForCancel();
    mTempDirectory.removeAtEnd({"memCleanupForCancel", 1030});
    logInfo("kelOBWEngine::memCleanupForCancel DONE");
}

void WorkingObjects::memCleanupForStopError() {
    const MutexLock hold(mLock);
    logInfo("kelOBWEngine::memCleanupForStopError ENTER");
    resetLocalVariables();
    abortFrameProcessor();
    logInfo("kelOBWEngine::memCleanupForStopError : free memory pOBWKDXMetaInfo");
    pOBWKDXMetaInfo.reset();
    mTempDirectory.removeAtEnd({"memCleanupForStopError", 1074});
    logInfo("kelOBWEngine::memCleanupForStopError DONE");
}

void WorkingObjects::removeTempDirForDeinit() {
    const MutexLock hold(mLock);
    mTempDirectory.removeAtEnd({"deinit", 1121});
}

void WorkingObjects::resetLocalVariables() {
    mStatus.progress = 0;
    mStatus.totalNumFrames = 0;
    orientation = 0;
    captureDirection = OBW_DIRECTION_LEFT2RIGHT;
}

void WorkingObjects::abortFrameProcessor() {
    if (frameProcessor == nullptr) {
        logError("kelOBWEngine::cancel frameProcessor is NULL");
        return;
    }
    try {
        frameProcessor->abort();
    } catch (...) {
        logError("kelOBWEngine::cancel frameProcessor abort FAILED");
        logCause(kLogTag, "kelOBWEngine::cancel");
    }
    frameProcessor.reset();
}

void WorkingObjects::freeFinder(const char* routine) {
    const MutexLock hold(mFinderLock);
    if (p_mFindTransform == nullptr)
        return;
    p_mFindTransform->Release();
    logInfo("kelOBWEngine::%s : p_mFindTransform Release DONE ", routine);
    ifindTransform::Destroy(p_mFindTransform.release());
    logInfo("kelOBWEngine::%s : p_mFindTransform Destroy DONE ", routine);
}

void WorkingObjects::freeStabilizerForCancel() {
    if (p_mVideoStabilizer == nullptr)
        return;
    p_mVideoStabilizer->Release();
    logInfo("kelOBWEngine::memCleanupForCancel : p_mVideoStabilizer Release DONE ");
    p_mVideoStabilizer.reset();
    logInfo("kelOBWEngine::memCleanupForCancel : p_mVideoStabilizer Destroy DONE ");
}

}  // namespace orbitwalk
