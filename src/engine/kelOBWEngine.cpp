#include "engine/kelOBWEngine.h"

#include <memory>

#include "common/Log.h"
#include "engine/PostProcessingInFlight.h"

using orbitwalk::kEngineDate;
using orbitwalk::kEngineTime;
using orbitwalk::kEngineVersion;
using orbitwalk::StateLockGuard;

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";

}  // namespace

constinit std::atomic<kelOBWEngine*> kelOBWEngine::pOBWEngine = nullptr;

kelOBWEngine::kelOBWEngine(const orbitwalk::BuildType& buildType)
    : mObjects(mStatus, buildType.isEngineering()), mSweep(mObjects, mStatus, mListener) {
    logInfo("kelOBWEngine::kelOBWEngine -- buildType = %s", buildType.text());
    if (buildType.isEngineering())
        logInfo("kelOBWEngine::kelOBWEngine -- ENGINEERING build");
}

kelOBWEngine* kelOBWEngine::GetInstance() {
    if (kelOBWEngine* const existing = pOBWEngine)
        return existing;
    std::unique_ptr<kelOBWEngine> created(new kelOBWEngine(orbitwalk::BuildType()));
    // Two threads may both find no instance at their first call.
    kelOBWEngine* current = nullptr;
    if (!pOBWEngine.compare_exchange_strong(current, created.get()))
        return current;
    logInfo("kelOBWEngine::GetInstance -- WR Engine created : size = %d",
            static_cast<int>(sizeof(kelOBWEngine)));
    return created.release();
}

void kelOBWEngine::ResetInstance() {
    logInfo("kelOBWEngine::ResetInstance -- enter, pOBWEngine=%p",
            static_cast<void*>(pOBWEngine.load()));
    orbitwalk::PostProcessingInFlight::waitForOthers();
    if (kelOBWEngine* const engine = pOBWEngine.exchange(nullptr)) {
        delete engine;
        logInfo("kelOBWEngine::ResetInstance -- done");
    }
}

int kelOBWEngine::init(int width, int height, OBWEngineListener* listener) {
    logInfo("kelOBWEngine::init -- called, Capture Engine Version = %s, date = %s, time %s",
            kEngineVersion, kEngineDate, kEngineTime);
    logInfo("kelOBWEngine::init lock engineState=%d, image resolution = [%dX%d]",
            mStatus.engineState.load(), width, height);
    if (listener == nullptr) {
        logInfo("Listener is null");
        return OBW_RESULT_INVALID_PARAM;
    }
    mListener.replace(listener);
    {
        const StateLockGuard hold(stateLock);
        mStatus.engineState = OBW_STATE_INITIALIZING;
        logInfo("kelOBWEngine::init unlock, engineState=%d", mStatus.engineState.load());
        mStatus.engineState = OBW_STATE_IDLE;
    }
    logInfo("kelOBWEngine::init done ");
    return OBW_RESULT_OK;
}

int kelOBWEngine::cancel() {
    mStatus.cancelCmdReceived = true;
    const orbitwalk::Stopwatch time;
    logInfo(
        "kelOBWEngine::cancel -- called, blocking call, Capture Engine Version = %s, date = %s, "
        "time %s",
        kEngineVersion, kEngineDate, kEngineTime);
    logInfo(
        "kelOBWEngine::cancel -- called - total frames = %d, progresss=%d, cancelCmdReceived = %d",
        mStatus.totalNumFrames.load(), mStatus.progress.load(), mStatus.cancelCmdReceived.load());
    logInfo("kelOBWEngine::cancel : stateLock-lock : engineState=%d", mStatus.engineState.load());
    StateLockGuard hold(stateLock);
    if (mStatus.engineState != OBW_STATE_IDLE) {
        hold.unlock();
        logError("kelOBWEngine::cancel : ERROR! engine state is not IDLE\n");
        mObjects.memCleanupForCancel();
        return OBW_RESULT_INVALID_STATE;
    }
    mStatus.engineState = OBW_STATE_CANCELLING;
    logInfo("kelOBWEngine::cancel : stateLock-lock done");
    mObjects.memCleanupForCancel();
    time.log("kelOBWEngine:: cancel CancelTime_acc");
    logInfo("kelOBWEngine::cancel : stateLock-unlock");
    mStatus.engineState = OBW_STATE_DONE;
    hold.unlock();
    logInfo("kelOBWEngine::cancel : stateLock-unlock done");
    return OBW_RESULT_OK;
}

int kelOBWEngine::reset() {
    logInfo("kelOBWEngine::reset -- called, Capture Engine Version = %s, date = %s, time %s",
            kEngineVersion, kEngineDate, kEngineTime);
    return OBW_RESULT_OK;
}

int kelOBWEngine::deinit() {
    logInfo("kelOBWEngine::deinit -- called, Capture Engine Version = %s, date = %s, time %s",
            kEngineVersion, kEngineDate, kEngineTime);
    logInfo("kelOBWEngine::deinit lock engineState=%d, numCapture=%d", mStatus.engineState.load(),
            mStatus.numCapture.load());
    {
        const StateLockGuard hold(stateLock);
        mStatus.engineState = OBW_STATE_DEINIT;
        logInfo("kelOBWEngine::deinit lock done");
        mObjects.memCleanupForCancel();
        mObjects.removeTempDirForDeinit();
        logInfo("kelOBWEngine::deinit unlock, engineState=%d", mStatus.engineState.load());
        mStatus.engineState = OBW_STATE_IDLE;
    }
    logInfo("kelOBWEngine::deinit unlock done");
    return OBW_RESULT_OK;
}

int kelOBWEngine::getOBWInfoSize(int* size) {
    *size = sizeof(__kelOBWKDXMetaData);
    return OBW_RESULT_OK;
}
