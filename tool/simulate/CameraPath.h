#pragma once

#include <span>
#include <vector>

#include "simulate/PictureMotion.h"

namespace orbitwalk::tool {

/// Unit step of the camera.
cv::Point2d cameraStep(SweepDirection direction);

/// A pose a frame: the steady sweep, starting at the scene's origin, with the hand's shake on both
/// axes and in roll.
std::vector<CameraPose> cameraPath(const SimulationSettings& settings);

/// Smallest upright rectangle of the scene that holds every frame of the path.
cv::Rect2d sceneExtent(std::span<const CameraPose> poses, FrameSize size);

}  // namespace orbitwalk::tool
