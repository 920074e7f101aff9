#include <sys/stat.h>

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
constexpr std::int32_t kFrontCamera = 1;

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

int kelOBWEngine::createWorkingObjects() try {
    const std::lock_guard objects(objectsLock);
    createRecord();
    if (const int result = renewTempDir(); result != OBW_RESULT_OK)
        return result;
    createFrameProcessor();
    if (const int result = createStabilizer(); result != OBW_RESULT_OK)
        return result;
    if (const int result = createFinder(); result != OBW_RESULT_OK)
        return result;
    resetLocalVariables();
    return OBW_RESULT_OK;
} catch (...) {
    logError("kelOBWEngine::start : ERROR! a component or an allocation failed\n");
    return OBW_RESULT_FAIL;
}

void kelOBWEngine::createRecord() {
    pFrameInfo.reset();
    pOBWKDXMetaInfo = std::make_unique<__kelOBWKDXMetaData>();
    __kelOBWKDXMetaData& record = *pOBWKDXMetaInfo;
    record.width = frameWidth;
    record.height = frameHeight;
    record.cameraType = kFrontCamera;
    record.frontCameraFlipped = 0;
    record.captureDirection = OBW_DIRECTION_LEFT2RIGHT;
    record.maxFrames = OBW_MAX_FRAMES;
    record.orientation = recordedOrientation(mInitParam.orientation);
    logInfo("kelOBWEngine::start :  Orientation changed from %d to %d ", mInitParam.orientation,
            record.orientation);
    logInfo("kelOBWEngine::start :  Orientation = %d FrontCamFlipped = %d ", record.orientation,
            frontCamFlipped(mInitParam));
}

int kelOBWEngine::renewTempDir() {
    if (removeTempDir(tmpDirName) != OBW_RESULT_OK) {
        logInfo("kelOBWEngine : start : removeTempDir FALIED retrun");
        return OBW_RESULT_TEMP_DIR_ERROR;
    }
    struct stat status;
    if (stat(tmpDirName, &status) == 0)
        return OBW_RESULT_OK;
    if (mkdir(tmpDirName, 0777) == -1) {
        logInfo("kelOBWEngine::start  : MKDIR FAILED");
        if (isEngBuild)
            logError("kelOBWEngine::start  : create directory %s FAILED", tmpDirName);
        else
            logError("kelOBWEngine::start  : create directory [Line: %d] FAILED", 470);
        return OBW_RESULT_TEMP_DIR_ERROR;
    }
    // At error priority, so that a log of errors alone shows when a capture began.
    if (isEngBuild)
        logError("kelOBWEngine::start  : create directory %s SUCCESS StartTimeChecking",
                 tmpDirName);
    else
        logError("kelOBWEngine::start  : create directory [Line: %d] SUCCESS StartTimeChecking",
                 476);
    return OBW_RESULT_OK;
}

void kelOBWEngine::createFrameProcessor() {
    frameProcessor.reset();
    const OBW_FrameProcessor::CreationParams params{
        .width = frameWidth,
        .height = frameHeight,
        .numBuffers = kFrameSlots,
        .bufferPool = nullptr,
        .mp4File = mp4FileName,
        .mp4TempDir = tmpDirName,
        .mp4FileHandle = fpMP4,
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

int kelOBWEngine::createStabilizer() {
    logInfo("kelOBWEngine::start create stabilizer");
    p_mVideoStabilizer.reset(iVideoStabilization::Create());
    const int status = p_mVideoStabilizer->Initialize(frameWidth, frameHeight);
    logInfo("kelOBWEngine::start create stabilizer and initialize done, stat=%d", status);
    if (status != 0) {
        logInfo("kelOBWEngine : start : VideoStabilizer Initialize FALIED, returning");
        return OBW_RESULT_FAIL;
    }
    return OBW_RESULT_OK;
}

int kelOBWEngine::createFinder() {
    const std::lock_guard finder(finderLock);
    logInfo("kelOBWEngine::start create FindTransform");
    p_mFindTransform.reset(ifindTransform::Create());
    const int status = p_mFindTransform->Initialize(frameWidth, frameHeight);
    logInfo("kelOBWEngine::start create FindTransform and initialize done, status=%d", status);
    if (status != 0) {
        logInfo("kelOBWEngine : start : FIndTransform Initialize FALIED, returning");
        return OBW_RESULT_FAIL;
    }
    return OBW_RESULT_OK;
}
