#include <algorithm>

#include "common/FixedPoint.h"
#include "common/Log.h"
#include "engine/EngineVersion.h"
#include "engine/ResultCodes.h"
#include "engine/StateLockGuard.h"
#include "engine/kelOBWEngine.h"

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";

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
        engineState.load(), numCapture.load(), totalNumFrames.load());
    logInfo(
        "kelOBWEngine::stop STOP_NON_BLOCKING : startFrmIndex=%d, endFrmIndex=%d, "
        "encodedFrameInfo = %p, encodedFrameNum = %d, captureDirection = %d",
        startFrame, endFrame, static_cast<const void*>(frames), count, direction);
    StateLockGuard hold(stateLock);
    if (engineState != OBW_STATE_IDLE) {
        hold.unlock();
        logError("kelOBWEngine::stop STOP_NON_BLOCKING : ERROR! engine state is not IDLE\n");
        memCleanupForStopError();
        return OBW_RESULT_INVALID_STATE;
    }
    if (frames == nullptr || count < 1 || count > OBW_MAX_FRAMES) {
        hold.unlock();
        logError("kelOBWEngine::stop : ERROR! Invalid Params: frames = %p, number = %d\n",
                 static_cast<const void*>(frames), count);
        return OBW_RESULT_INVALID_PARAM;
    }
    const int result = takeOverSweep(startFrame, endFrame, frames, count, direction);
    return result == OBW_RESULT_OK ? startPostProcessing(hold, stopTime) : result;
}

/// A failure after the state has changed leaves it: only init or deinit get the engine out of it.
int kelOBWEngine::takeOverSweep(int startFrame, int endFrame,
                                const _ENCODING_FRAME_INFORMATION* frames, int count,
                                std::int32_t direction) try {
    const std::lock_guard objects(objectsLock);
    if (p_mVideoStabilizer == nullptr || pOBWKDXMetaInfo == nullptr) {
        logError("kelOBWEngine::stop : ERROR! nothing was started\n");
        return OBW_RESULT_FAIL;
    }
    std::fill(std::begin(mStabParam), std::end(mStabParam), 0);
    startFrmIndex = startFrame;
    endFrmIndex = endFrame;
    engineState = OBW_STATE_STOPPING;
    captureDirection = acceptedDirection(direction);
    if (captureDirection != direction)
        logError(
            "kelOBWEngine::stop ERROR! Invalid capture direction [%d], set default as LEFT2RIGHT "
            "\n",
            direction);
    encodedFrameNum = count;
    pOBWKDXMetaInfo->captureDirection = captureDirection;
    pFrameInfo.reset(new _ENCODING_FRAME_INFORMATION[count]);
    std::copy_n(frames, count, pFrameInfo.get());
    return sendSweep();
} catch (...) {
    logError("kelOBWEngine::stop : ERROR! a component or an allocation failed\n");
    return OBW_RESULT_FAIL;
}

int kelOBWEngine::sendSweep() {
    const std::span frames(pFrameInfo.get(), static_cast<std::size_t>(encodedFrameNum));
    const SweepSelection selection = selectSweep(frames, startFrmIndex, endFrmIndex);
    auto next = selection.transforms.begin();
    for (int i = 0; i < encodedFrameNum; ++i) {
        const _ENCODING_FRAME_INFORMATION& frame = frames[i];
        const double x = frame.x, y = frame.y, a = frame.a;
        logInfo("kelOBWEngine::stop : frame render = %d, Trajectory : %f, %f, %f", frame.render, x,
                y, a);
        logInfo("kelOBWEngine::stop : other info : %d, %d, %d", frame.render, frame.otherInfo1,
                frame.otherInfo2);
        if (i == selection.reference) {
            logInfo("kelOBWEngine::stop save first valid frame trajectory = [%f, %f, %f]", x, y, a);
        } else if (next != selection.transforms.end() && next->frame == i) {
            if (const int result = sendTransform(*next++); result != OBW_RESULT_OK)
                return result;
        }
        pOBWKDXMetaInfo->renderFlag[i] = frame.render;
    }
    return selection.transforms.empty() ? sendSingleFrame() : OBW_RESULT_OK;
}

int kelOBWEngine::sendTransform(const SweepTransform& transform) {
    const auto& [x, y, a] = transform.fromReference;
    const int status = p_mVideoStabilizer->sendTransformationMatrix(x, y, a);
    logInfo(
        "kelOBWEngine::stop sendTransformationMatrix done : stat = %d, transformation = [%f, %f, "
        "%f]",
        status, x, y, a);
    insertTransformInfoInOBWMetaData(x, y, transform.frame);
    if (status == 0) {
        logError("kelWidereelEngine::stop : ERROR! sendTransformationMatrix FAILED \n");
        return OBW_RESULT_FAIL;
    }
    logInfo("kelOBWEngine::stop select frame : frame num = %d", totalNumFrames.load());
    return OBW_RESULT_OK;
}

/// With no frame to place against a reference, the path is one point.
int kelOBWEngine::sendSingleFrame() {
    const int status = p_mVideoStabilizer->sendTransformationMatrix(0, 0, 0);
    logInfo("kelOBWEngine::stop sendTransformationMatrix done for Single Valid Frame : stat = %d ",
            status);
    if (status == 0) {
        logError(
            "kelWidereelEngine::stop : ERROR! Single Valid Frame sendTransformationMatrix FAILED "
            "\n");
        return OBW_RESULT_FAIL;
    }
    return OBW_RESULT_OK;
}

void kelOBWEngine::insertTransformInfoInOBWMetaData(double dx, double dy, int frameIndex) {
    const bool alongX = sweepAxis(orientation, captureDirection) == SweepAxis::x;
    const double displacement = alongX ? dx : dy;
    const std::int32_t scaled = orbitwalk::toFixedPoint(displacement);
    pOBWKDXMetaInfo->scaledInputTransform[frameIndex] = scaled;
    if (alongX)
        logInfo(
            "insertTransformInfoInOBWMetaData : store dx =%f, %d, orientation=%d, "
            "cameraDirection=%d",
            displacement, scaled, orientation, captureDirection);
    else
        logInfo(
            "insertTransformInfoInOBWMetaData : store dy =%f, %d, orientation=%d, "
            "cameraDirection=%d",
            displacement, scaled, orientation, captureDirection);
}

/// Once the thread runs, it owns the lock and may even see the engine deleted, so nothing of the
/// engine is touched any more.
int kelOBWEngine::startPostProcessing(StateLockGuard& hold, const orbitwalk::Stopwatch& stopTime) {
    hold.handOver();
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
