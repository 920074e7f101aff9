#pragma once

#include <opencv2/core.hpp>

#include "orbitwalk/Geometry.h"

namespace orbitwalk {

/// The motion that a transform [c -s tx; s c ty] stands for: its translation and its angle. The
/// scale that it may contain is dropped.
/// @param transform  2x3 CV_64F, or empty: no motion.
Trajectory motionOf(const cv::Mat& transform);

/// Brings a transform between reduced pictures to full-size pixels, in place: only its translation
/// has a unit.
void scaleTranslation(cv::Mat& transform, double factor);

}  // namespace orbitwalk
