#include "stabilization/FeedbackSearch.h"

#include "stabilization/CameraPath.h"
#include "stabilization/CropBounds.h"

namespace orbitwalk {

namespace {

double smoothed(double estimate, double gaussian, int pin) {
    return pin != kNotPinned ? static_cast<double>(pin) : (estimate + gaussian) * 0.5;
}

}  // namespace

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

FilterRun runFilter(const SmoothingInput& input, const FilterNoise& noise,
                    std::span<const cv::Point2f> corners, const CropBounds& bounds) {
    FilterRun run{{}, bounds, false};
    if (!input.path.empty()) {
        ScalarKalmanFilter x(input.path[0].x);
        ScalarKalmanFilter y(input.path[0].y);
        ScalarKalmanFilter a(input.path[0].a);
        run.smoothPath.reserve(input.path.size());
        for (std::size_t i = 0; i < input.path.size(); ++i) {
            const Trajectory& point = input.path[i];
            const Trajectory& gaussian = input.gaussianPath[i];
            const Trajectory smooth{
                smoothed(x.update(point.x, noise), gaussian.x, input.fixedX),
                smoothed(y.update(point.y, noise), gaussian.y, input.fixedY),
                smoothed(a.update(point.a, kAngleNoise), gaussian.a, kNotPinned)};
            run.smoothPath.push_back(smooth);
            run.bounds = narrowed(run.bounds, corners,
                                  correctedTransform(input.transforms[i], smooth, point));
        }
    }
    run.keepsEnough = keepsEnough(run.bounds, input.size, input.cropRatio);
    return run;
}

SmoothingResult searchFeedback(const SmoothingInput& input, int steps, bool feedback,
                               const FilterRunner& run) {
    for (int k = 0; feedback && k <= steps; ++k) {
        FilterRun attempt = run(feedbackNoise(k, steps));
        if (attempt.keepsEnough)
            return {std::move(attempt.smoothPath), attempt.bounds, k};
    }
    return {pathOneFrameLate(input.path, input.transforms), framePixels(input.size), std::nullopt};
}

SmoothingResult smoothWithFeedback(const SmoothingInput& input, int steps, bool feedback) {
    const auto corners = frameCorners(input.size);
    SmoothingResult result = searchFeedback(input, steps, feedback, [&](const FilterNoise& noise) {
        return runFilter(input, noise, corners, wholeFrame(input.size));
    });
    if (result.step)
        result.bounds = fitToAspect(result.bounds, input.size);
    return result;
}

}  // namespace orbitwalk
