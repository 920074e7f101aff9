#include "common/Log.h"
#include "engine/EngineVersion.h"
#include "engine/ResultCodes.h"
#include "engine/StateLockGuard.h"
#include "engine/kelOBWEngine.h"
#include "frameproc/FrameSize.h"

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";

}  // namespace

int kelOBWEngine::setFrameInfo(unsigned char* frame, float x, float y, float a) {
    const orbitwalk::Stopwatch callTime;
    logInfo("kelOBWEngine::setFrameInfo -- called, Capture Engine Version = %s, date = %s, time %s",
            kEngineVersion, kEngineDate, kEngineTime);
    logInfo(
        "kelOBWEngine::setFrameInfo : stateLock-lock : totalNumFrames=%d, engineState=%d, "
        "cancelCmdReceived=%d",
        totalNumFrames.load(), engineState.load(), cancelCmdReceived.load());
    logInfo("kelOBWEngine::setFrameInfo : Trajectory : %f, %f, %f", static_cast<double>(x),
            static_cast<double>(y), static_cast<double>(a));
    StateLockGuard hold(stateLock);
    if (engineState != OBW_STATE_IDLE) {
        hold.unlock();
        logError("kelFlashReelEngine::processFrame : ERROR! engine state is not IDLE\n");
        return OBW_RESULT_INVALID_STATE;
    }
    engineState = OBW_STATE_FRAME;
    logInfo("kelOBWEngine::setFrameInfo lock done engineState=%d", engineState.load());
    logInfo(
        "kelOBWEngine::setFrameInfo : input res : %dX%d, WR res : %dX%d, total frames = %d, max "
        "frames=%d",
        frameWidth, frameHeight, frameWidth, frameHeight, totalNumFrames.load(), OBW_MAX_FRAMES);
    switch (handOver(frame)) {
        case HandOver::queued:
            break;
        case HandOver::nothingToQueue:
            engineState = OBW_STATE_IDLE;
            logError("kelOBWEngine::setFrameInfo : ERROR! no frame or no frameProcessor\n");
            return OBW_RESULT_FAIL;
        case HandOver::refused:
            // The state stays: a capture that lost a frame takes no more of them.
            hold.unlock();
            logError(
                "kelWidereelEngine::setFrameInfo : ERROR! OBW_FrameProcessor SendFrame FAILED \n");
            return OBW_RESULT_FAIL;
    }
    ++totalNumFrames;
    callTime.log("kelOBWEngine::setFrameInfo profile setFrameInfo_acc");
    engineState = OBW_STATE_IDLE;
    hold.unlock();
    logInfo("kelOBWEngine::setFrameInfo : stateLock-unlock done:engineState=%d, totalNumFrames=%d",
            engineState.load(), totalNumFrames.load());
    return OBW_RESULT_OK;
}

kelOBWEngine::HandOver kelOBWEngine::handOver(unsigned char* frame) try {
    const std::lock_guard objects(objectsLock);
    if (frame == nullptr || frameProcessor == nullptr)
        return HandOver::nothingToQueue;
    const orbitwalk::Stopwatch copyTime;
    if (frameProcessor->sendFrame(frame, orbitwalk::yuv420FrameBytes(frameWidth, frameHeight)) == 0)
        return HandOver::refused;
    copyTime.log("kelOBWEngine::setFrameInfo profile memcopy : input sendFrame_acc");
    return HandOver::queued;
} catch (...) {
    return HandOver::refused;
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
    int status = OBW_RESULT_FAIL;
    try {
        const std::lock_guard finder(finderLock);
        if (p_mFindTransform == nullptr) {
            logError("kelOBWEngine::computeTrajectory : ERROR! no FindTransform\n");
            return OBW_RESULT_FAIL;
        }
        const orbitwalk::ScopedTiming timing(
            "kelOBWEngine::computeTrajectory : computeTrajectory_time");
        status = p_mFindTransform->getTrajectory(frame, x, y, a);
    } catch (...) {
        logError("kelOBWEngine::computeTrajectory : ERROR! the measurement failed\n");
    }
    logInfo("kelOBWEngine::computeTrajectory : Trajectory = [ %f, %f, %f ] ",
            static_cast<double>(*x), static_cast<double>(*y), static_cast<double>(*a));
    return status == 0 ? OBW_RESULT_OK : OBW_RESULT_FAIL;
}
