#include "sweep/SmoothedPath.h"

#include "stabilization/CameraPath.h"
#include "stabilization/FeedbackSearch.h"
#include "stabilization/GaussianSmoothing.h"

namespace orbitwalk::tool {

static_assert(kLastFeedbackStep == stabilization::kFeedbackSteps);

namespace {

/// The stabiliser's own, of the same three members.
using EnginePoint = decltype(stabilization::SmoothingResult::smoothPath)::value_type;

template <typename To, typename From>
std::vector<To> converted(const std::vector<From>& path) {
    std::vector<To> points;
    for (const From& point : path)
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
        const Trajectory position = path[i].position - path[result.reference].position;
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
    const auto transforms = converted<EnginePoint>(sentTransforms(path, first, last, result));
    const auto measured = rebuildPath(transforms);
    const auto gaussian = gaussianSmooth(measured, kGaussianRadius);
    const SmoothingResult smoothing = smoothWithFeedback({.transforms = transforms,
                                                          .path = measured,
                                                          .gaussianPath = gaussian,
                                                          .size = {width, height}},
                                                         kFeedbackSteps, true);
    result.measured = converted<Trajectory>(measured);
    result.gaussian = converted<Trajectory>(gaussian);
    result.smoothed = converted<Trajectory>(smoothing.smoothPath);
    result.feedbackStep = smoothing.step;
    const CropBounds& bounds = smoothing.bounds;
    result.crop = {bounds.minX, bounds.minY, bounds.maxX - bounds.minX, bounds.maxY - bounds.minY};
    return result;
}

}  // namespace orbitwalk::tool
