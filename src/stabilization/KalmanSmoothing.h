#pragma once

#include <span>
#include <vector>

#include "orbitwalk/Geometry.h"

/// Scalar Kalman filters for a position that is modelled as constant (Kalman, 1960).
namespace orbitwalk {

struct FilterNoise {
    double process = 0;
    double measurement = 0;
};

/// Noise of the angle's filter in every run of the pipeline.
inline constexpr FilterNoise kAngleNoise{0.01, 0.1};

/// Noise of all axes in the fixed-parameter variant.
inline constexpr FilterNoise kFixedNoise{0.004, 0.25};

/// One axis of a path. The error covariance starts at 1.
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

}  // namespace orbitwalk
