#pragma once

#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "orbitwalk/Geometry.h"
#include "stabilization/CropBounds.h"

namespace orbitwalk {

struct FilterNoise {
    double process = 0;
    double measurement = 0;
};

/// Noise of the angle's filter in every run of the pipeline.
inline constexpr FilterNoise kAngleNoise{0.01, 0.1};

/// Noise of all axes in the fixed-parameter variant.
inline constexpr FilterNoise kFixedNoise{0.004, 0.25};

/// One axis of a path, a position that is modelled as constant (Kalman, 1960). The error covariance
/// starts at 1.
class ScalarKalmanFilter {
  public:
    explicit ScalarKalmanFilter(double start) : mEstimate(start) {}

    /// @return the new estimate, after predicting and correcting by one measurement.
    double update(double measured, const FilterNoise& noise);

  private:
    double mEstimate;
    double mCovariance = 1.0;
};

/// Noise of x and y in run k of a feedback search over steps + 1 runs: from hardest smoothing
/// (0.004, 3.0) to lightest (0.04, 0.5).
/// @param steps  not 0, which has no schedule and gives values that are not numbers.
FilterNoise feedbackNoise(int k, int steps);

/// The fixed-parameter variant: raw estimates of x, y and a, each started at zero.
std::vector<Trajectory> kalmanSmoothFixed(std::span<const Trajectory> path);

inline constexpr int kGaussianRadius = 10;
inline constexpr int kFeedbackSteps = 10;
inline constexpr double kCropRatio = 0.76;
/// Value of a path axis that is not pinned.
inline constexpr int kNotPinned = -999999;

/// One sweep as the filter sees it. The three paths are equally long and outlive the struct.
struct SmoothingInput {
    std::span<const Trajectory> transforms;    ///< Frame to frame.
    std::span<const Trajectory> path;          ///< Their running sum.
    std::span<const Trajectory> gaussianPath;  ///< The path after gaussianSmooth.
    FrameSize size;
    double cropRatio = kCropRatio;  ///< Least share of the frame that the crop must keep.
    int fixedX = kNotPinned;        ///< Smoothed x of every frame, or kNotPinned.
    int fixedY = kNotPinned;
};

struct FilterRun {
    std::vector<Trajectory> smoothPath;
    CropBounds bounds;
    bool keepsEnough = false;
};

/// One run: smooths the path by the mean of Kalman estimate and Gaussian path, and narrows the
/// bounds by every frame that this corrects.
/// @param noise    of x and y; the angle's is kAngleNoise.
/// @param corners  frameCorners of the frame.
/// @param bounds   to narrow; wholeFrame for a run of its own.
FilterRun runFilter(const SmoothingInput& input, const FilterNoise& noise,
                    std::span<const cv::Point2f> corners, const CropBounds& bounds);

struct SmoothingResult {
    std::vector<Trajectory> smoothPath;
    CropBounds bounds;
    std::optional<int> step;  ///< Run that kept enough picture; none: no correction at all.
};

using FilterRunner = std::function<FilterRun(const FilterNoise&)>;

/// Calls the runner with weaker and weaker smoothing (feedbackNoise) until a run keeps enough
/// picture. Without one, without feedback or with negative steps the result is the path one frame
/// late and framePixels.
/// @return bounds of a passing run as the run left them, not yet fitted to the frame's aspect.
SmoothingResult searchFeedback(const SmoothingInput& input, int steps, bool feedback,
                               const FilterRunner& run);

/// The whole search with runFilter, and the aspect fit of its bounds: what the engine does, without
/// its log.
SmoothingResult smoothWithFeedback(const SmoothingInput& input, int steps, bool feedback);

}  // namespace orbitwalk
