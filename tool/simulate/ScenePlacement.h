#pragma once

#include <opencv2/core/types.hpp>

#include "simulate/SimulationSettings.h"

namespace orbitwalk::tool {

/// Where a scene point lies in the photograph: photo pixel = origin + scale * scene point.
struct ScenePlacement {
    double scale = 1;
    cv::Point2d origin;
};

/// A photograph is never enlarged more than twice: beyond that a clip shows only blur.
inline constexpr double smallestPhotoScale = 0.5;

/// Size of the smallest picture that shows the extent one to one, with the border that the lens
/// and the resampling filter reach into.
cv::Size sceneSize(const cv::Rect2d& extent, double softness);

/// Puts the sweep into the middle of the photograph, as large as it fits, so that no frame ever
/// looks past an edge. @param extent  see sceneExtent.
/// @throws ToolError naming the longest sweep that the photograph holds.
ScenePlacement placeSweep(const cv::Rect2d& extent, cv::Size photo,
                          const SimulationSettings& settings);

}  // namespace orbitwalk::tool
