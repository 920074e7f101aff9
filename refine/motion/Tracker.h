#pragma once

#include <opencv2/core/mat.hpp>
#include <span>
#include <vector>

#include "motion/SimilarityFit.h"

namespace orbitwalk::refine {

/// A frame as the tracker needs it, in the coordinates of the working picture.
struct TrackedFrame {
    std::vector<cv::Mat> pyramid;
    std::vector<cv::Point2f> corners;
};

/// Where points of one working picture went in another, as far as they come back when followed in
/// the other direction (Kalal, Mikolajczyk, Matas, "Forward-backward error", 2010). Each way by the
/// pyramidal tracker of Lucas and Kanade (Bouguet, 2001).
struct TrackedPoints {
    std::vector<cv::Point2f> from;
    std::vector<cv::Point2f> to;
};

/// @param window  side of the tracker's windows, at most what the pyramids were made for.
TrackedPoints follow(const TrackedFrame& before, const TrackedFrame& now, int window);

/// The same where the motion is known to a pixel or so: nearer, and in a third of the time.
/// @param expected  where each corner of `before` should be.
TrackedPoints followNear(const TrackedFrame& before, const TrackedFrame& now, int window,
                         std::span<const cv::Point2f> expected);

}  // namespace orbitwalk::refine
