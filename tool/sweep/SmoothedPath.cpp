#include "sweep/SmoothedPath.h"

#include <utility>

#include "stabilization/CameraPath.h"
#include "stabilization/FeedbackSearch.h"

namespace orbitwalk::tool {

static_assert(kLastFeedbackStep == kFeedbackSteps);

namespace {

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
    SmoothedPath result;
    const auto transforms = sentTransforms(path, first, last, result);
    result.measured = rebuildPath(transforms);
    result.gaussian = gaussianSmooth(result.measured, kGaussianRadius);
    SmoothingResult smoothing = smoothWithFeedback({.transforms = transforms,
                                                    .path = result.measured,
                                                    .gaussianPath = result.gaussian,
                                                    .size = {width, height}},
                                                   kFeedbackSteps, true);
    result.smoothed = std::move(smoothing.smoothPath);
    result.feedbackStep = smoothing.step;
    const CropBounds& bounds = smoothing.bounds;
    result.crop = {bounds.minX, bounds.minY, bounds.maxX - bounds.minX, bounds.maxY - bounds.minY};
    return result;
}

}  // namespace orbitwalk::tool
