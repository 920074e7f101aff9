#include <cstring>

#include "common/Log.h"
#include "engine/kelOBWEngine.h"

// The operations that a capture is made of, but for its end: start, frames, trajectories.

using orbitwalk::kEngineDate;
using orbitwalk::kEngineTime;
using orbitwalk::kEngineVersion;
using orbitwalk::StateLockGuard;
using orbitwalk::WorkingObjects;

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";

void logFrame(const orbitwalk::EngineStatus& status, double x, double y, double a) {
    logInfo("kelOBWEngine::setFrameInfo -- called, Capture Engine Version = %s, date = %s, time %s",
            kEngineVersion, kEngineDate, kEngineTime);
    logInfo(
        "kelOBWEngine::setFrameInfo : stateLock-lock : totalNumFrames=%d, engineState=%d, "
        "cancelCmdReceived=%d",
        status.totalNumFrames.load(), status.engineState.load(), status.cancelCmdReceived.load());
    logInfo("kelOBWEngine::setFrameInfo : Trajectory : %f, %f, %f", x, y, a);
}

}  // namespace

int kelOBWEngine::start(_OBW_ENGINE_INIT_PARAM* param) {
    logInfo("kelOBWEngine::start -- called, Capture Engine Version = %s, date = %s, time %s",
            kEngineVersion, kEngineDate, kEngineTime);
    logInfo("kelOBWEngine::start-- max frames = %d, engineState=%d", OBW_MAX_FRAMES,
            mStatus.engineState.load());
    const std::int32_t width = param != nullptr ? param->imageWidth : 0;
    const std::int32_t height = param != nullptr ? param->imageHeight : 0;
    if (param == nullptr || !orbitwalk::isUsableFrameSize(width, height)) {
        logError("kelOBWEngine::start : ERROR! Invalid Params: %dx%d \n", width, height);
        return OBW_RESULT_INVALID_PARAM;
    }
    const int result = takeOverParameters(*param);
    return result == OBW_RESULT_OK ? setUpCapture() : result;
}

int kelOBWEngine::takeOverParameters(const _OBW_ENGINE_INIT_PARAM& param) {
    logInfo("kelOBWEngine::start lock engineState=%d, numCapture=%d", mStatus.engineState.load(),
            mStatus.numCapture.load());
    StateLockGuard hold(stateLock);
    if (!orbitwalk::acceptsStart(mStatus.engineState)) {
        hold.unlock();
        logError("kelOBWEngine::start : ERROR! engine state is invalid\n");
        return OBW_RESULT_INVALID_STATE;
    }
    mStatus.engineState = OBW_STATE_START_PARAMS;
    logInfo("kelOBWEngine::start OBW IMAGE RESOLUTION = [%d X %d]", param.imageWidth,
            param.imageHeight);
    // As bytes: the flag may hold more than a bool can.
    std::memcpy(&mSettings.param, &param, sizeof mSettings.param);
    logInfo("kelOBWEngine::start : imageWidth:%d, imageHeight:%d, imageFormat:%d", param.imageWidth,
            param.imageHeight, param.imageFormat);
    if (const int result = takeOverDestinations(); result != OBW_RESULT_OK)
        return result;
    mStatus.engineState = OBW_STATE_IDLE;
    hold.unlock();
    logInfo("kelOBWEngine::start unlock done");
    logInfo("kelOBWEngine::start Setting Parameters in Start DONE");
    mStatus.cancelCmdReceived = false;
    return OBW_RESULT_OK;
}

/// Without a stream or a buffer the state is left as it is: no start is allowed until init or
/// deinit.
int kelOBWEngine::takeOverDestinations() {
    const _OBW_ENGINE_INIT_PARAM& param = mSettings.param;
    if (param.fpMP4 == nullptr) {
        logError("kelOBWEngine::start : fpWideReelMP4 is NULL\n");
        return OBW_RESULT_INVALID_PARAM;
    }
    if (param.pWideReelInfo == nullptr) {
        logError("kelOBWEngine::start : pWideReelInfo is NULL, WR metadata buffer is NULL\n");
        return OBW_RESULT_INVALID_PARAM;
    }
    mSettings.fpMP4 = param.fpMP4;
    mSettings.pCallerMetaInfo = param.pWideReelInfo;
    mSettings.metaInfoSize = sizeof(__kelOBWKDXMetaData);
    logInfo("kelOBWEngine::start :  WR metadata buffer size = %d", mSettings.metaInfoSize);
    mObjects.takeTempDirectory();
    return OBW_RESULT_OK;
}

int kelOBWEngine::setUpCapture() {
    StateLockGuard hold(stateLock);
    if (!orbitwalk::acceptsStart(mStatus.engineState)) {
        hold.unlock();
        logError("kelOBWEngine::start : ERROR! engine state is invalid\n");
        return OBW_RESULT_INVALID_STATE;
    }
    mStatus.engineState = OBW_STATE_START_SETUP;
    logInfo("kelOBWEngine::start lock done, engineState=%d, numCapture=%d",
            mStatus.engineState.load(), mStatus.numCapture.load());
    ++mStatus.numCapture;
    mSweep.forget();
    const int result = mObjects.create(mSettings);
    mStatus.engineState = OBW_STATE_IDLE;
    hold.unlock();
    if (result == OBW_RESULT_OK)
        logInfo("kelOBWEngine::start done unlock done, engineState=%d", mStatus.engineState.load());
    return result;
}

int kelOBWEngine::setFrameInfo(unsigned char* frame, float x, float y, float a) {
    const orbitwalk::Stopwatch callTime;
    logFrame(mStatus, x, y, a);
    StateLockGuard hold(stateLock);
    if (mStatus.engineState != OBW_STATE_IDLE) {
        hold.unlock();
        logError("kelFlashReelEngine::processFrame : ERROR! engine state is not IDLE\n");
        return OBW_RESULT_INVALID_STATE;
    }
    mStatus.engineState = OBW_STATE_FRAME;
    logInfo("kelOBWEngine::setFrameInfo lock done engineState=%d", mStatus.engineState.load());
    const int width = mSettings.param.imageWidth, height = mSettings.param.imageHeight;
    logInfo(
        "kelOBWEngine::setFrameInfo : input res : %dX%d, WR res : %dX%d, total frames = %d, max "
        "frames=%d",
        width, height, width, height, mStatus.totalNumFrames.load(), OBW_MAX_FRAMES);
    switch (mObjects.queueFrame(frame, {width, height})) {
        case WorkingObjects::Intake::queued:
            break;
        case WorkingObjects::Intake::nothingToQueue:
            mStatus.engineState = OBW_STATE_IDLE;
            logError("kelOBWEngine::setFrameInfo : ERROR! no frame or no frameProcessor\n");
            return OBW_RESULT_FAIL;
        case WorkingObjects::Intake::refused:
            // The state stays: a capture that lost a frame takes no more of them.
            hold.unlock();
            logError(
                "kelWidereelEngine::setFrameInfo : ERROR! OBW_FrameProcessor SendFrame FAILED \n");
            return OBW_RESULT_FAIL;
    }
    ++mStatus.totalNumFrames;
    callTime.log("kelOBWEngine::setFrameInfo profile setFrameInfo_acc");
    mStatus.engineState = OBW_STATE_IDLE;
    hold.unlock();
    logInfo("kelOBWEngine::setFrameInfo : stateLock-unlock done:engineState=%d, totalNumFrames=%d",
            mStatus.engineState.load(), mStatus.totalNumFrames.load());
    return OBW_RESULT_OK;
}

int kelOBWEngine::computeTrajectory(unsigned char* frame, float* x, float* y, float* a) {
    logInfo(
        "kelOBWEngine::computeTrajectory -- called, Capture Engine Version = %s, date = %s, time "
        "%s",
        kEngineVersion, kEngineDate, kEngineTime);
    if (x == nullptr || y == nullptr || a == nullptr) {
        logError("kelOBWEngine::computeTrajectory : ERROR! output pointer is NULL\n");
        return OBW_RESULT_FAIL;
    }
    *x = *y = *a = 0;
    return mObjects.measure(frame, x, y, a);
}
