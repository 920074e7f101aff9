#pragma once

#include <opencv2/core.hpp>

#include "findTransform/2D/RigidTransform.h"

namespace orbitwalk {

struct TrackedGrid {
    /// In pixels of the reduced images.
    PointPairs pairs;
    /// Size of the images over that of the reduced ones, at least 1.
    double scale = 1;
};

/// Tracks a regular grid of points, 15 rows in all, from the first image into the second, both
/// reduced to fit 160x120; points that the tracker loses are left out.
/// @param first, second  8-bit images of equal size and type, 1, 3 (BGR) or 4 (BGRA) channels.
TrackedGrid trackGrid(const cv::Mat& first, const cv::Mat& second);

}  // namespace orbitwalk
