#pragma once

#include <span>
#include <vector>

#include "sweep/TruthCsv.h"

/// What a perfect measurement of a sweep would find. All of it is pure arithmetic.
namespace orbitwalk::tool {

/// The camera over the scene, which it sees one to one: the point of the scene at the frame's
/// centre, and the turn of the frame against the scene.
using CameraPose = Trajectory;

/// Top-left pixel of the region that the engine measures in: it keeps every fourth pixel, from the
/// first, and leaves a fifth of the columns and rows out at each side. A rotation's t depends on
/// this origin.
PicturePoint measuringOrigin(FrameSize size);

/// Exact motion of the picture between two poses, in the sense of the engine: the rigid map
/// p' = R(a) p + (x, y) of the picture's points, with its origin at measuringOrigin.
Trajectory motionBetween(const CameraPose& previous, const CameraPose& current, FrameSize size);

/// One row a pose; the first is zero.
std::vector<TrueMotion> trueMotions(std::span<const CameraPose> poses, FrameSize size);

}  // namespace orbitwalk::tool
