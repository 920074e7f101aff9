#include "stabilization/cKalmanFilterStabilization.h"

#include <utility>

#include "common/Log.h"
#include "stabilization/CameraPath.h"
#include "stabilization/CropBounds.h"

using namespace orbitwalk;

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE KALMAN_STABILIZATION";

}  // namespace

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

int cKalmanFilterStabilization::__CalculatePrevToCurrSmoothCumulativeTransform(bool feedback) {
    if (__smoothingBlocked != 0)
        return 1;
    __gaussianTrajectory.clear();
    __GaussianSmooth(kGaussianRadius);
    return __FilterWithFeedBack(kFeedbackSteps, feedback);
}

int cKalmanFilterStabilization::__GaussianSmooth(int radius) {
    if (radius < 1)
        return 0;
    __gaussianTrajectory = gaussianSmooth(__trajectory, radius);
    return 1;
}

int cKalmanFilterStabilization::__FilterWithFeedBack(int steps, bool feedback) {
    std::vector<cv::Point2f> corners;
    const auto runLogged = [&](const FilterNoise& noise) {
        FilterRun run;
        auto& [minX, maxX, minY, maxY] = run.bounds;
        __smoothTrajectory.clear();
        __ResetCornerParameter(corners, minX, maxX, minY, maxY);
        logInfo("%s kalman feedback param diff2 %lf %lf\n", "__FilterWithFeedBack",
                noise.measurement, noise.process);
        run.keepsEnough =
            __KalmanSmooth(noise.process, noise.measurement, corners, minX, maxX, minY, maxY) == 1;
        run.smoothPath = std::exchange(__smoothTrajectory, {});
        return run;
    };
    SmoothingResult result = searchFeedback(__FilterInput(), steps, feedback, runLogged);
    if (result.step)
        __RecalculateBoundary(result.bounds.minX, result.bounds.maxX, result.bounds.minY,
                              result.bounds.maxY);
    __smoothTrajectory = std::move(result.smoothPath);
    __minX = result.bounds.minX;
    __maxX = result.bounds.maxX;
    __minY = result.bounds.minY;
    __maxY = result.bounds.maxY;
    logInfo("crop smoothing boundaries %d %d %d %d", __minX, __maxX, __minY, __maxY);
    return 0;
}

int cKalmanFilterStabilization::__KalmanSmooth(double Q, double R,
                                               std::vector<cv::Point2f>& corners, int& minX,
                                               int& maxX, int& minY, int& maxY) {
    logInfo("Q.getResource('y'), R.getResource('y') : %lf %lf\n", Q, R);
    const FilterRun run = runFilter(__FilterInput(), {Q, R}, corners, {minX, maxX, minY, maxY});
    __smoothTrajectory.insert(__smoothTrajectory.end(), run.smoothPath.begin(),
                              run.smoothPath.end());
    minX = run.bounds.minX;
    maxX = run.bounds.maxX;
    minY = run.bounds.minY;
    maxY = run.bounds.maxY;
    logInfo("min_x, max_x, max_y, min_y : %d %d %d %d", minX, maxX, maxY, minY);
    return run.keepsEnough ? 1 : 0;
}

int cKalmanFilterStabilization::__ResetCornerParameter(std::vector<cv::Point2f>& corners, int& minX,
                                                       int& maxX, int& minY, int& maxY) const {
    const FrameSize size{__width, __height};
    const auto frame = frameCorners(size);
    corners.assign(frame.begin(), frame.end());
    const CropBounds whole = wholeFrame(size);
    minX = whole.minX;
    maxX = whole.maxX;
    minY = whole.minY;
    maxY = whole.maxY;
    return 0;
}

void cKalmanFilterStabilization::__RecalculateBoundary(int& minX, int& maxX, int& minY,
                                                       int& maxY) const {
    const CropBounds fitted = fitToAspect({minX, maxX, minY, maxY}, {__width, __height});
    minX = fitted.minX;
    maxX = fitted.maxX;
    minY = fitted.minY;
    maxY = fitted.maxY;
}

int cKalmanFilterStabilization::__CalculateprevToCurrNewTransform() {
    logInfo("%s smooth trajetory size %d\n", "__CalculateprevToCurrNewTransform",
            static_cast<int>(__smoothTrajectory.size()));
    const CorrectedTransforms corrected =
        correctTransforms(__prevToCurrTransform, __trajectory, __smoothTrajectory);
    __crossOverPoint = corrected.crossOverPoint;
    __prevToCurrNewTransform.insert(__prevToCurrNewTransform.end(), corrected.transforms.begin(),
                                    corrected.transforms.end());
    logInfo("%s output transform size %d\n", "__CalculateprevToCurrNewTransform",
            static_cast<int>(__prevToCurrNewTransform.size()));
    return 0;
}

int cKalmanFilterStabilization::__KalmanSmooth() {
    const auto estimates = kalmanSmoothFixed(__trajectory);
    __smoothTrajectory.insert(__smoothTrajectory.end(), estimates.begin(), estimates.end());
    return 0;
}

SmoothingInput cKalmanFilterStabilization::__FilterInput() const {
    return {__prevToCurrTransform,
            __trajectory,
            __gaussianTrajectory,
            {__width, __height},
            __cropRatio,
            __fixedX,
            __fixedY};
}

void cKalmanFilterStabilization::__CropSmoothingProcess(double min, double max, int cropTop,
                                                        int cropLeft, int cropBottom, int cropRight,
                                                        int orientation, int flag) {
    if (orientation == 180)
        logInfo("crop smoothing reverse landscape process as landsape %d %d", orientation, flag);
    if (orientation == 270)
        logInfo("crop smoothing reverse portrait process as portrait %d %d", orientation, flag);
    const bool landscape = orientation == 0 || orientation == 180;
    const bool portrait = orientation == 90 || orientation == 270;
    if (landscape)
        logInfo("crop smoothing  landscape %d %d", orientation, flag);
    if (portrait)
        logInfo("crop smoothing portarit mode %d %d", orientation, flag);
    double ratio = __cropRatio;
    if ((landscape || portrait) && flag == 0) {
        const CropSmoothingPin pin =
            pinToMargins(landscape ? CropSmoothingSide{min, max, cropTop, cropBottom, __height}
                                   : CropSmoothingSide{min, max, cropLeft, cropRight, __width});
        (landscape ? __fixedY : __fixedX) = pin.value;
        __cropRatio = ratio = pin.ratio;
    }
    __LimitCropRatio(ratio, min, max, {cropTop, cropLeft, cropBottom, cropRight});
}

void cKalmanFilterStabilization::__LimitCropRatio(double ratio, double min, double max,
                                                  const std::array<int, 4>& margins) {
    const bool nothingLeft = ratio <= 0;
    if (!nothingLeft && !(ratio > kCropRatio))
        return;
    if (nothingLeft)
        __fixedX = __fixedY = kNotPinned;
    __cropRatio = kCropRatio;
    logInfo(" crop smoothing max %lf min %lf offset %d  %d cropRatio %lf %d %d %d %d\n", max, min,
            __fixedX, __fixedY, nothingLeft ? __cropRatio : ratio, margins[0], margins[1],
            margins[2], margins[3]);
}
