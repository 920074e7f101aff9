#pragma once

#include <opencv2/core.hpp>
#include <span>
#include <vector>

#include "simulate/SimulationSettings.h"
#include "sweep/Tables.h"

/// Where a hand that sweeps takes the camera, and what a perfect measurement of it would find.
namespace orbitwalk::tool {

/// The camera over the scene, which it sees one to one: the point of the scene at the frame's
/// centre, and the turn of the frame against the scene.
using CameraPose = Trajectory;

/// How far a hand goes at most, and how large its tremor is for a drift of one.
struct ShakeStrength {
    double peak = 0;
    double tremor = 0;
};

/// One axis of a hand that holds a camera, a value a frame: slow drift of 0.5 to 3 Hz, stronger the
/// slower, and a physiological tremor of 8 to 12 Hz. Sines of random frequency and phase, scaled so
/// that the largest value's magnitude is the peak.
std::vector<double> handShake(int frames, double framesPerSecond, const ShakeStrength& strength,
                              cv::RNG random);

/// Unit step of the camera.
cv::Point2d cameraStep(SweepDirection direction);

/// A pose a frame: the steady sweep, starting at the scene's origin, with the hand's shake on both
/// axes and in roll.
std::vector<CameraPose> cameraPath(const SimulationSettings& settings);

/// Smallest upright rectangle of the scene that holds every frame of the path.
cv::Rect2d sceneExtent(std::span<const CameraPose> poses, FrameSize size);

/// Exact motion of the picture between two poses, in the sense of the engine: the rigid map
/// p' = R(a) p + (x, y) of the picture's points, with its origin at measuringOrigin.
Trajectory motionBetween(const CameraPose& previous, const CameraPose& current, FrameSize size);

/// One row a pose; the first is zero.
std::vector<TrueMotion> trueMotions(std::span<const CameraPose> poses, FrameSize size);

}  // namespace orbitwalk::tool
