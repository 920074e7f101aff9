#include "motion/Tracker.h"

#include <opencv2/video/tracking.hpp>

#include "motion/WorkingPicture.h"

namespace orbitwalk::refine {

namespace {

using Points = std::vector<cv::Point2f>;

/// A track that comes back this far from where it began is none, pixels of the working picture.
constexpr double kReturnTolerance = 0.5;
constexpr int kNearLevels = 1;

/// How far to look, and from where.
struct Search {
    int window;
    int levels;
    int flags;
};

std::vector<uchar> track(const TrackedFrame& from, const TrackedFrame& to, const Points& points,
                         Points& found, const Search& search) {
    const cv::TermCriteria until(cv::TermCriteria::COUNT + cv::TermCriteria::EPS, 30, 0.01);
    std::vector<uchar> status;
    cv::calcOpticalFlowPyrLK(from.pyramid, to.pyramid, points, found, status, cv::noArray(),
                             {search.window, search.window}, search.levels, until, search.flags);
    return status;
}

TrackedPoints thereAndBack(const TrackedFrame& before, const TrackedFrame& now, Points found,
                           const Search& search) {
    const Points& points = before.corners;
    if (points.empty())
        return {};
    const auto there = track(before, now, points, found, search);
    Points back = points;
    const auto again = track(now, before, found, back, search);
    TrackedPoints kept;
    for (std::size_t i = 0; i < points.size(); ++i)
        if (there[i] && again[i] && cv::norm(points[i] - back[i]) < kReturnTolerance) {
            kept.from.push_back(points[i]);
            kept.to.push_back(found[i]);
        }
    return kept;
}

}  // namespace

TrackedPoints follow(const TrackedFrame& before, const TrackedFrame& now, int window) {
    return thereAndBack(before, now, {}, {window, kPyramidLevels, 0});
}

TrackedPoints followNear(const TrackedFrame& before, const TrackedFrame& now, int window,
                         std::span<const cv::Point2f> expected) {
    return thereAndBack(before, now, {expected.begin(), expected.end()},
                        {window, kNearLevels, cv::OPTFLOW_USE_INITIAL_FLOW});
}

}  // namespace orbitwalk::refine
