#pragma once

#include <filesystem>
#include <opencv2/core.hpp>
#include <opencv2/core/types.hpp>

#include "simulate/SimulationSettings.h"

/// The picture that the virtual camera sweeps across.
namespace orbitwalk::tool {

/// Reads a picture of any format that FFmpeg decodes, upright, as 8-bit BGR.
/// @throws ToolError naming the file and the reason.
cv::Mat3b readPhoto(const std::filesystem::path& file);

/// A picture of its own for sweeps without a photograph: coloured ellipses and boxes that cover one
/// another, with sizes of every order (the dead-leaves model, whose edges and statistics are those
/// of natural scenes), and a fine grain on every surface. Depends on size and generator alone.
cv::Mat3b texturedScene(cv::Size size, cv::RNG random);

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
