#include "common/Log.h"
#include "engine/EngineVersion.h"
#include "engine/ResultCodes.h"
#include "engine/StateLockGuard.h"
#include "engine/TempDirectory.h"
#include "engine/kelOBWEngine.h"

// Cancel, reset, deinit, and the routines that free what a capture leaves behind.

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";

}  // namespace

int kelOBWEngine::cancel() {
    cancelCmdReceived = true;
    const orbitwalk::Stopwatch time;
    logInfo(
        "kelOBWEngine::cancel -- called, blocking call, Capture Engine Version = %s, date = %s, "
        "time %s",
        kEngineVersion, kEngineDate, kEngineTime);
    logInfo(
        "kelOBWEngine::cancel -- called - total frames = %d, progresss=%d, cancelCmdReceived = %d",
        totalNumFrames.load(), progress.load(), cancelCmdReceived.load());
    logInfo("kelOBWEngine::cancel : stateLock-lock : engineState=%d", engineState.load());
    StateLockGuard hold(stateLock);
    if (engineState != OBW_STATE_IDLE) {
        hold.unlock();
        logError("kelOBWEngine::cancel : ERROR! engine state is not IDLE\n");
        memCleanupForCancel();
        return OBW_RESULT_INVALID_STATE;
    }
    engineState = OBW_STATE_CANCELLING;
    logInfo("kelOBWEngine::cancel : stateLock-lock done");
    memCleanupForCancel();
    time.log("kelOBWEngine:: cancel CancelTime_acc");
    logInfo("kelOBWEngine::cancel : stateLock-unlock");
    engineState = OBW_STATE_DONE;
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
    logInfo("kelOBWEngine::deinit lock engineState=%d, numCapture=%d", engineState.load(),
            numCapture.load());
    {
        const StateLockGuard hold(stateLock);
        engineState = OBW_STATE_DEINIT;
        logInfo("kelOBWEngine::deinit lock done");
        memCleanupForCancel();
        removeTempDirForDeinit();
        logInfo("kelOBWEngine::deinit unlock, engineState=%d", engineState.load());
        engineState = OBW_STATE_IDLE;
    }
    logInfo("kelOBWEngine::deinit unlock done");
    return OBW_RESULT_OK;
}

void kelOBWEngine::memCleanupForCancel() {
    const std::lock_guard objects(objectsLock);
    logInfo("kelOBWEngine::memCleanupForCancel ENTER");
    resetLocalVariables();
    abortFrameProcessor();
    logInfo("kelOBWEngine::memCleanupForCancel : free memory pOBWKDXMetaInfo");
    pOBWKDXMetaInfo.reset();
    freeFinderForCancel();
    freeStabilizerForCancel();
    removeTempDirForCancel();
    logInfo("kelOBWEngine::memCleanupForCancel DONE");
}

/// The finder and the stabiliser stay alive.
void kelOBWEngine::memCleanupForStopError() {
    const std::lock_guard objects(objectsLock);
    logInfo("kelOBWEngine::memCleanupForStopError ENTER");
    resetLocalVariables();
    abortFrameProcessor();
    logInfo("kelOBWEngine::memCleanupForStopError : free memory pOBWKDXMetaInfo");
    pOBWKDXMetaInfo.reset();
    removeTempDirForStopError();
    logInfo("kelOBWEngine::memCleanupForStopError DONE");
}

void kelOBWEngine::abortFrameProcessor() {
    if (frameProcessor == nullptr) {
        logError("kelOBWEngine::cancel frameProcessor is NULL");
        return;
    }
    try {
        frameProcessor->abort();
    } catch (...) {
        logError("kelOBWEngine::cancel frameProcessor abort FAILED");
    }
    frameProcessor.reset();
}

void kelOBWEngine::freeFinderForCancel() {
    const std::lock_guard finder(finderLock);
    if (p_mFindTransform == nullptr)
        return;
    p_mFindTransform->Release();
    logInfo("kelOBWEngine::memCleanupForCancel : p_mFindTransform Release DONE ");
    ifindTransform::Destroy(p_mFindTransform.release());
    logInfo("kelOBWEngine::memCleanupForCancel : p_mFindTransform Destroy DONE ");
}

void kelOBWEngine::freeStabilizerForCancel() {
    if (p_mVideoStabilizer == nullptr)
        return;
    p_mVideoStabilizer->Release();
    logInfo("kelOBWEngine::memCleanupForCancel : p_mVideoStabilizer Release DONE ");
    p_mVideoStabilizer.reset();
    logInfo("kelOBWEngine::memCleanupForCancel : p_mVideoStabilizer Destroy DONE ");
}

void kelOBWEngine::removeTempDirForCancel() {
    if (differsFromLocalTmpDir(tmpDirName)) {
        logError(
            "kelOBWEngine::memCleanupForCancel REMOVE_TEMP_DIR_AFTER_END, ERROR!!!!!!! invlaid "
            "path");
        logError("kelOBWEngine::memCleanupForCancel REMOVE_TEMP_DIR_AFTER_END, tmpDirName=%s",
                 loggablePath(tmpDirName, "[Line: 1030]"));
        takeLocalTmpDir();
    }
    if (removeTempDir(tmpDirName) == OBW_RESULT_OK)
        logInfo("kelOBWEngine : memCleanupForCancel : removeTempDir SUCCESS");
    else
        logInfo("kelOBWEngine : memCleanupForCancel : removeTempDir FALIED!!");
}

void kelOBWEngine::removeTempDirForStopError() {
    if (differsFromLocalTmpDir(tmpDirName)) {
        logError(
            "kelOBWEngine::memCleanupForStopError REMOVE_TEMP_DIR_AFTER_END, ERROR!!!!!!! invlaid "
            "path");
        logError("kelOBWEngine::memCleanupForStopError REMOVE_TEMP_DIR_AFTER_END, tmpDirName=%s",
                 loggablePath(tmpDirName, "[Line: 1074]"));
        takeLocalTmpDir();
    }
    if (removeTempDir(tmpDirName) == OBW_RESULT_OK)
        logInfo("kelOBWEngine : memCleanupForStopError : removeTempDir SUCCESS");
    else
        logInfo("kelOBWEngine : memCleanupForStopError : removeTempDir FALIED!!");
}

void kelOBWEngine::removeTempDirForDeinit() {
    const std::lock_guard objects(objectsLock);
    if (differsFromLocalTmpDir(tmpDirName)) {
        logError("kelOBWEngine::deinit REMOVE_TEMP_DIR_AFTER_END, ERROR!!!!!!! invlaid path");
        logError("kelOBWEngine::deinit REMOVE_TEMP_DIR_AFTER_END, tmpDirName=%s",
                 loggablePath(tmpDirName, "[Line: 1121]"));
        takeLocalTmpDir();
    }
    if (removeTempDir(tmpDirName) == OBW_RESULT_OK)
        logInfo("kelOBWEngine : deinit : removeTempDir SUCCESS");
    else
        logInfo("kelOBWEngine : deinit : removeTempDir FALIED!!");
}
