#include "sweep/SmoothedPath.h"

#include "stabilization/CameraPath.h"
#include "stabilization/FeedbackSearch.h"
#include "stabilization/GaussianSmoothing.h"

namespace orbitwalk::tool {

static_assert(kLastFeedbackStep == stabilization::kFeedbackSteps);

namespace {

Trajectory trajectoryOf(const SweepRow& row) {
    return {row.x, row.y, row.a};
}

std::vector<PathPosition> positions(std::span<const Trajectory> path) {
    std::vector<PathPosition> points;
    for (const Trajectory& point : path)
        points.push_back({point.x, point.y, point.a});
    return points;
}

/// The positions that stop sends, from frame to frame.
std::vector<Trajectory> sentTransforms(std::span<const SweepRow> path, int first, int last,
                                       SmoothedPath& result) {
    std::vector<Trajectory> transforms;
    Trajectory previous;
    for (int i = 0; i < static_cast<int>(path.size()); ++i) {
        if (path[i].flag != 1 || i < first || i > last)
            continue;
        if (result.reference < 0) {
            result.reference = i;
            continue;
        }
        const Trajectory position = trajectoryOf(path[i]) - trajectoryOf(path[result.reference]);
        transforms.push_back(position - previous);
        previous = position;
        result.frames.push_back(i);
    }
    if (transforms.empty())
        transforms.push_back({});
    return transforms;
}

}  // namespace

SmoothedPath smoothedPath(std::span<const SweepRow> path, int first, int last, int width,
                          int height) {
    using namespace stabilization;
    SmoothedPath result;
    const auto transforms = sentTransforms(path, first, last, result);
    const auto measured = rebuildPath(transforms);
    const auto gaussian = gaussianSmooth(measured, kGaussianRadius);
    const SmoothingResult smoothing = smoothWithFeedback({.transforms = transforms,
                                                          .path = measured,
                                                          .gaussianPath = gaussian,
                                                          .size = {width, height}},
                                                         kFeedbackSteps, true);
    result.measured = positions(measured);
    result.gaussian = positions(gaussian);
    result.smoothed = positions(smoothing.smoothPath);
    result.feedbackStep = smoothing.step;
    result.minX = smoothing.bounds.minX;
    result.maxX = smoothing.bounds.maxX;
    result.minY = smoothing.bounds.minY;
    result.maxY = smoothing.bounds.maxY;
    return result;
}

}  // namespace orbitwalk::tool
