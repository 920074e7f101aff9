#include "stabilization/cKalmanFilterStabilization.h"

#include "stabilization/CameraPath.h"
#include "stabilization/StabilizationLog.h"

using namespace orbitwalk;

iVideoStabilization* iVideoStabilization::Create() {
    return new cKalmanFilterStabilization;
}

int iVideoStabilization::Destroy(iVideoStabilization* stabilizer) {
    delete stabilizer;
    return 1;
}

int cKalmanFilterStabilization::Initialize(int width, int height) {
    logInfo("cKalmanFilterStabilization::Initialize : __init = %d, [%d X %d]", __init, width,
            height);
    if (width <= 0 || height <= 0)
        return 1;
    __width = width;
    __height = height;
    __minX = 0;
    __maxX = width - 1;
    __minY = 0;
    __maxY = height - 1;
    __smoothingBlocked = 0;
    __prevToCurrTransform.clear();
    __trajectory.clear();
    __smoothTrajectory.clear();
    __prevToCurrNewTransform.clear();
    __gaussianTrajectory.clear();
    __init = true;
    __validFrame.push_back(true);
    __frameCount = 1;
    __firstInput = true;
    return 0;
}

int cKalmanFilterStabilization::sendTransformationMatrix(double x, double y, double a) {
    logInfo("sendTransformationMatrix : __init = %d, cummulative transform : [%f, %f, %f]", __init,
            x, y, a);
    if (!__init)
        return 0;
    const Trajectory position{x, y, a};
    const Trajectory transform = __firstInput ? position : position - __lastInput;
    __firstInput = false;
    __lastInput = position;
    logInfo("sendTransformationMatrix : __init = %d, actual transform : [%f, %f, %f]", 1,
            transform.x, transform.y, transform.a);
    __prevToCurrTransform.push_back(transform);
    __cumulative += transform;
    __validFrame.push_back(true);
    ++__frameCount;
    __actualTransform.push_back(__cumulative - __prevCumulative);
    __prevCumulative = __cumulative;
    return 1;
}

int cKalmanFilterStabilization::doStabilization(int orientation, int captureDirection, int cropTop,
                                                int cropLeft, int cropBottom, int cropRight,
                                                bool feedback) {
    logInfo("cKalmanFilterStabilization:doStabilization : __init = %d", __init);
    if (!__init)
        return 2;
    logInfo(
        "cKalmanFilterStabilization:doStabilization : orientation=%d, captureDirection=%d -> 1 : "
        "Left2Right, 2 : Right2Left, 3 : Top2Bottom, 4 : Bottom2Top",
        orientation, captureDirection);
    logInfo(
        "cKalmanFilterStabilization:doStabilization : cropTop=%d, cropLeft=%d, cropBottom = %d, "
        "cropRight = %d",
        cropTop, cropLeft, cropBottom, cropRight);
    if (__prevToCurrTransform.empty())
        return 1;
    __smoothTrajectory.clear();
    __prevToCurrNewTransform.clear();
    __gaussianTrajectory.clear();
    __trajectory = rebuildPath(__prevToCurrTransform);
    if (__CalculatePrevToCurrSmoothCumulativeTransform(feedback) != 0)
        return 1;
    return __CalculateprevToCurrNewTransform() != 0 ? 1 : 0;
}
