#pragma once

#include <opencv2/core/types.hpp>
#include <span>
#include <vector>

#include "simulate/SimulationSettings.h"

/// What a perfect measurement of a sweep would find. All of it is pure arithmetic.
///
/// Conventions: pixels of the full-size frame, x right, y down, pixel centres at whole numbers. A
/// positive angle turns x towards y (clockwise on the screen).
namespace orbitwalk::tool {

/// The camera over the scene, which it sees one to one: the point of the scene at the frame's
/// centre, and the turn of the frame against the scene.
struct CameraPose {
    double x = 0;
    double y = 0;
    double roll = 0;
};

/// Motion of the picture in the sense of the engine's `Trajectory`: the rigid map p' = R(a) p + t
/// of the picture's points, with its origin at measuringOrigin.
struct PictureMotion {
    double x = 0;
    double y = 0;
    double a = 0;
};

/// One row of the truth: motion since the previous frame, and the plain sum of these so far.
struct TrueMotion {
    PictureMotion step;
    PictureMotion sum;
};

cv::Point2d rotated(cv::Point2d p, double angle);

/// Middle of the frame, between the two middle pixels.
cv::Point2d frameCentre(FrameSize size);

/// Top-left pixel of the region that the engine measures in: it keeps every fourth pixel, from the
/// first, and leaves a fifth of the columns and rows out at each side. A rotation's t depends on
/// this origin.
cv::Point2d measuringOrigin(FrameSize size);

/// Exact motion of the picture between two poses.
PictureMotion motionBetween(const CameraPose& previous, const CameraPose& current, FrameSize size);

/// One row a pose; the first is zero.
std::vector<TrueMotion> trueMotions(std::span<const CameraPose> poses, FrameSize size);

}  // namespace orbitwalk::tool
