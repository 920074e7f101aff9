#pragma once

#include <span>
#include <vector>

#include "sweep/SweepCsv.h"
#include "sweep/TruthCsv.h"

/// What a perfect measurement of a sweep would find. All of it is pure arithmetic.
namespace orbitwalk::tool {

/// The camera over the scene, which it sees one to one: the point of the scene at the frame's
/// centre, and the turn of the frame against the scene.
using CameraPose = Trajectory;

/// Exact motion of the picture between two poses, in the sense of the engine: the rigid map
/// p' = R(a) p + (x, y) of the picture's points, with its origin at measuringOrigin.
Trajectory motionBetween(const CameraPose& previous, const CameraPose& current, FrameSize size);

/// One row a pose; the first is zero.
std::vector<TrueMotion> trueMotions(std::span<const CameraPose> poses, FrameSize size);

}  // namespace orbitwalk::tool
