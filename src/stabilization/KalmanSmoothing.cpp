#include "stabilization/KalmanSmoothing.h"

namespace orbitwalk {

double ScalarKalmanFilter::update(double measured, const FilterNoise& noise) {
    const double predicted = mCovariance + noise.process;
    const double gain = predicted / (predicted + noise.measurement);
    mEstimate += gain * (measured - mEstimate);
    mCovariance = predicted * (1 - gain);
    return mEstimate;
}

FilterNoise feedbackNoise(int k, int steps) {
    // The process span is 0.04 - 0.004 as double arithmetic gives it, one unit above 0.036.
    return {0.004 + k * (0.036000000000000004 / steps), 3.0 - k * (2.5 / steps)};
}

std::vector<Trajectory> kalmanSmoothFixed(std::span<const Trajectory> path) {
    ScalarKalmanFilter x(0);
    ScalarKalmanFilter y(0);
    ScalarKalmanFilter a(0);
    std::vector<Trajectory> estimates;
    estimates.reserve(path.size());
    for (const Trajectory& point : path)
        estimates.push_back({x.update(point.x, kFixedNoise), y.update(point.y, kFixedNoise),
                             a.update(point.a, kFixedNoise)});
    return estimates;
}

}  // namespace orbitwalk
