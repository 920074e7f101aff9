#include <cstring>

#include "common/Log.h"
#include "engine/EngineVersion.h"
#include "engine/ResultCodes.h"
#include "engine/StartParameters.h"
#include "engine/StateLockGuard.h"
#include "engine/TempDirectory.h"
#include "engine/kelOBWEngine.h"

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";

}  // namespace

int kelOBWEngine::start(_OBW_ENGINE_INIT_PARAM* param) {
    logInfo("kelOBWEngine::start -- called, Capture Engine Version = %s, date = %s, time %s",
            kEngineVersion, kEngineDate, kEngineTime);
    logInfo("kelOBWEngine::start-- max frames = %d, engineState=%d", OBW_MAX_FRAMES,
            engineState.load());
    const std::int32_t width = param != nullptr ? param->imageWidth : 0;
    const std::int32_t height = param != nullptr ? param->imageHeight : 0;
    if (param == nullptr || !isUsableFrameSize(width, height)) {
        logError("kelOBWEngine::start : ERROR! Invalid Params: %dx%d \n", width, height);
        return OBW_RESULT_INVALID_PARAM;
    }
    const int result = takeOverParameters(*param);
    return result == OBW_RESULT_OK ? setUpCapture() : result;
}

int kelOBWEngine::takeOverParameters(const _OBW_ENGINE_INIT_PARAM& param) {
    logInfo("kelOBWEngine::start lock engineState=%d, numCapture=%d", engineState.load(),
            numCapture.load());
    StateLockGuard hold(stateLock);
    if (!acceptsStart(engineState)) {
        hold.unlock();
        logError("kelOBWEngine::start : ERROR! engine state is invalid\n");
        return OBW_RESULT_INVALID_STATE;
    }
    engineState = OBW_STATE_START_PARAMS;
    frameWidth = param.imageWidth;
    frameHeight = param.imageHeight;
    logInfo("kelOBWEngine::start OBW IMAGE RESOLUTION = [%d X %d]", frameWidth, frameHeight);
    // As bytes: the flag may hold more than a bool can.
    std::memcpy(&mInitParam, &param, sizeof mInitParam);
    logInfo("kelOBWEngine::start : imageWidth:%d, imageHeight:%d, imageFormat:%d",
            mInitParam.imageWidth, mInitParam.imageHeight, mInitParam.imageFormat);
    if (const int result = takeOverDestinations(); result != OBW_RESULT_OK)
        return result;
    engineState = OBW_STATE_IDLE;
    hold.unlock();
    logInfo("kelOBWEngine::start unlock done");
    logInfo("kelOBWEngine::start Setting Parameters in Start DONE");
    cancelCmdReceived = false;
    return OBW_RESULT_OK;
}

/// Without a stream or a buffer the state is left as it is: no start is allowed until init or
/// deinit.
int kelOBWEngine::takeOverDestinations() {
    if (mInitParam.fpMP4 == nullptr) {
        logError("kelOBWEngine::start : fpWideReelMP4 is NULL\n");
        return OBW_RESULT_INVALID_PARAM;
    }
    if (mInitParam.pWideReelInfo == nullptr) {
        logError("kelOBWEngine::start : pWideReelInfo is NULL, WR metadata buffer is NULL\n");
        return OBW_RESULT_INVALID_PARAM;
    }
    fpMP4 = mInitParam.fpMP4;
    pCallerMetaInfo = mInitParam.pWideReelInfo;
    metaInfoSize = sizeof(__kelOBWKDXMetaData);
    logInfo("kelOBWEngine::start :  WR metadata buffer size = %d", metaInfoSize);
    buildPaths();
    return OBW_RESULT_OK;
}

void kelOBWEngine::buildPaths() {
    const std::lock_guard objects(objectsLock);
    // Not rewritten when nothing changes: the worker of a capture that this start replaces may be
    // reading them.
    if (differsFromLocalTmpDir(tmpDirName))
        takeLocalTmpDir();
    const int length = static_cast<int>(std::strlen(mp4FileName));
    if (isEngBuild) {
        logInfo("kelOBWEngine::start--temp path : localTmpDir = %s", tmpDirName);
        logInfo("kelOBWEngine::start--temp mp4 file = %s, mp4FileName size = %d", mp4FileName,
                length);
    } else {
        logInfo("kelOBWEngine::start--temp path : [Line: %d]", 405);
        logInfo("kelOBWEngine::start--temp mp4 file [Line: %d], mp4FileName size = %d", 432,
                length);
    }
}

int kelOBWEngine::setUpCapture() {
    StateLockGuard hold(stateLock);
    if (!acceptsStart(engineState)) {
        hold.unlock();
        logError("kelOBWEngine::start : ERROR! engine state is invalid\n");
        return OBW_RESULT_INVALID_STATE;
    }
    engineState = OBW_STATE_START_SETUP;
    logInfo("kelOBWEngine::start lock done, engineState=%d, numCapture=%d", engineState.load(),
            numCapture.load());
    ++numCapture;
    const int result = createWorkingObjects();
    engineState = OBW_STATE_IDLE;
    hold.unlock();
    if (result == OBW_RESULT_OK)
        logInfo("kelOBWEngine::start done unlock done, engineState=%d", engineState.load());
    return result;
}
