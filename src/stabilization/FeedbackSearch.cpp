#include "stabilization/FeedbackSearch.h"

#include "stabilization/AspectFit.h"
#include "stabilization/CameraPath.h"

namespace orbitwalk {

namespace {

double smoothed(double estimate, double gaussian, int pin) {
    return pin != kNotPinned ? static_cast<double>(pin) : (estimate + gaussian) * 0.5;
}

}  // namespace

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
