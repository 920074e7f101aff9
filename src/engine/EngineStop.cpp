#include "common/Log.h"
#include "engine/PostProcessingInFlight.h"
#include "engine/kelOBWEngine.h"

// The end of a capture: the way of the state lock from stop to the post-processing thread.

using orbitwalk::kEngineDate;
using orbitwalk::kEngineTime;
using orbitwalk::kEngineVersion;
using orbitwalk::PostProcessEnd;
using orbitwalk::StateLockGuard;

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";
constexpr int kProgressStatus = 0;

}  // namespace

int kelOBWEngine::stop(int startFrame, int endFrame, const _ENCODING_FRAME_INFORMATION* frames,
                       int count, OBWDirection direction) {
    const orbitwalk::Stopwatch stopTime;
    logInfo(
        "kelOBWEngine::stop STOP_NON_BLOCKING -- called, Capture Engine Version = %s, date = %s, "
        "time %s",
        kEngineVersion, kEngineDate, kEngineTime);
    logInfo(
        "kelOBWEngine::stop STOP_NON_BLOCKING : stateLock-lock : engineState=%d, numCapture=%d, "
        "total frames = %d",
        mStatus.engineState.load(), mStatus.numCapture.load(), mStatus.totalNumFrames.load());
    logInfo(
        "kelOBWEngine::stop STOP_NON_BLOCKING : startFrmIndex=%d, endFrmIndex=%d, "
        "encodedFrameInfo = %p, encodedFrameNum = %d, captureDirection = %d",
        startFrame, endFrame, static_cast<const void*>(frames), count, direction);
    StateLockGuard hold(stateLock);
    if (mStatus.engineState != OBW_STATE_IDLE) {
        hold.unlock();
        logError("kelOBWEngine::stop STOP_NON_BLOCKING : ERROR! engine state is not IDLE\n");
        mObjects.memCleanupForStopError();
        return OBW_RESULT_INVALID_STATE;
    }
    if (frames == nullptr || count < 1 || count > OBW_MAX_FRAMES) {
        hold.unlock();
        logError("kelOBWEngine::stop : ERROR! Invalid Params: frames = %p, number = %d\n",
                 static_cast<const void*>(frames), count);
        return OBW_RESULT_INVALID_PARAM;
    }
    const int result = mSweep.takeOver({.range = {startFrame, endFrame},
                                        .frames = {frames, static_cast<std::size_t>(count)},
                                        .direction = direction});
    if (result != OBW_RESULT_OK)
        return result;
    hold.handOver();
    return startPostProcessing(stopTime);
}

/// Once the thread runs, it owns the lock and may even see the engine deleted, so nothing of the
/// engine is touched any more.
int kelOBWEngine::startPostProcessing(const orbitwalk::Stopwatch& stopTime) {
    pthread_t thread;
    if (pthread_create(&thread, nullptr, onOBWEngineDoPostProcess, this) != 0) {
        // The lock stays locked: a capture that can be neither finished nor freed in order blocks
        // the engine until the process ends.
        logError("kelOBWEngine :: stop STOP_NON_BLOCKING: pthread_create returns error.");
        return OBW_RESULT_FAIL;
    }
    logInfo("kelOBWEngine :: stop STOP_NON_BLOCKING: pthread_create success");
    pthread_detach(thread);
    stopTime.log("kelOBWEngine:: STOP_NON_BLOCKING stop StopTime_acc");
    logInfo("kelOBWEngine::stop STOP_NON_BLOCKING : DONE");
    return OBW_RESULT_OK;
}

void* kelOBWEngine::onOBWEngineDoPostProcess(void* engine) {
    const orbitwalk::PostProcessingInFlight inFlight;
    auto* const self = static_cast<kelOBWEngine*>(engine);
    const PostProcessEnd end = self->postProcess();
    // From here on the engine may be in use elsewhere, and after the listener's call gone: until
    // then, whoever deletes it waits for this thread.
    orbitwalk::logUnlocked(end);
    if (end == PostProcessEnd::done)
        self->mListener.call(kProgressStatus, 100);
    return nullptr;
}

PostProcessEnd kelOBWEngine::postProcess() {
    const StateLockGuard hold(stateLock, StateLockGuard::TakeOver());
    const PostProcessEnd end = mSweep.postProcess(mSettings);
    mStatus.engineState = OBW_STATE_DONE;
    return end;
}
