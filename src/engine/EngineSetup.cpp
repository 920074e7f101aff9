#include <sys/stat.h>

#include "common/Log.h"
#include "engine/ResultCodes.h"
#include "engine/StartParameters.h"
#include "engine/kelOBWEngine.h"

// The second half of a start: what a capture works with.

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";
constexpr std::int32_t kFrontCamera = 1;

}  // namespace

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
        const orbitwalk::ScopedTiming timing(
            "kelOBWEngine::start profile create_FrameProcessor_acc");
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
