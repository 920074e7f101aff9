#include "engine/Sweep.h"

#include <algorithm>

#include "common/Log.h"
#include "engine/MotionRecord.h"

// The first half of the way, on the thread that calls stop.

namespace orbitwalk {

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";

}  // namespace

int Sweep::takeOver(const SweepArguments& given) try {
    const MutexLock hold(mObjects.mLock);
    if (mObjects.p_mVideoStabilizer == nullptr || mObjects.pOBWKDXMetaInfo == nullptr) {
        logError("kelOBWEngine::stop : ERROR! nothing was started\n");
        return OBW_RESULT_FAIL;
    }
    mRange = given.range;
    mStatus.engineState = OBW_STATE_STOPPING;
    mObjects.captureDirection = acceptedDirection(given.direction);
    if (mObjects.captureDirection != given.direction)
        logError(
            "kelOBWEngine::stop ERROR! Invalid capture direction [%d], set default as LEFT2RIGHT "
            "\n",
            given.direction);
    encodedFrameNum = static_cast<std::int32_t>(given.frames.size());
    mObjects.pOBWKDXMetaInfo->captureDirection = mObjects.captureDirection;
    pFrameInfo.reset(new _ENCODING_FRAME_INFORMATION[given.frames.size()]);
    std::ranges::copy(given.frames, pFrameInfo.get());
    return send();
} catch (...) {
    logError("kelOBWEngine::stop : ERROR! a component or an allocation failed\n");
    logCause(kLogTag, "kelOBWEngine::stop");
    return OBW_RESULT_FAIL;
}

int Sweep::send() {
    const std::span frames(pFrameInfo.get(), static_cast<std::size_t>(encodedFrameNum));
    const SweepSelection selection = selectSweep(frames, mRange.start, mRange.end);
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
        mObjects.pOBWKDXMetaInfo->renderFlag[i] = frame.render;
    }
    return selection.transforms.empty() ? sendSingleFrame() : OBW_RESULT_OK;
}

int Sweep::sendTransform(const SweepTransform& transform) {
    const auto& [x, y, a] = transform.fromReference;
    const int status = mObjects.p_mVideoStabilizer->sendTransformationMatrix(x, y, a);
    logInfo(
        "kelOBWEngine::stop sendTransformationMatrix done : stat = %d, transformation = [%f, %f, "
        "%f]",
        status, x, y, a);
    insertTransformInfoInOBWMetaData(*mObjects.pOBWKDXMetaInfo, mObjects.orientation, x, y,
                                     transform.frame);
    if (status == 0) {
        logError("kelWidereelEngine::stop : ERROR! sendTransformationMatrix FAILED \n");
        return OBW_RESULT_FAIL;
    }
    logInfo("kelOBWEngine::stop select frame : frame num = %d", mStatus.totalNumFrames.load());
    return OBW_RESULT_OK;
}

/// With no frame to place against a reference, the path is one point.
int Sweep::sendSingleFrame() {
    const int status = mObjects.p_mVideoStabilizer->sendTransformationMatrix(0, 0, 0);
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

}  // namespace orbitwalk
