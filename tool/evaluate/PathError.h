#pragma once

#include <span>

#include "sweep/SweepCsv.h"

namespace orbitwalk::tool {

struct AxisError {
    double rms = 0;
    double max = 0;  ///< Largest magnitude.
};

/// How far a measured path is from the true one. Pixels and degrees.
struct PathError {
    /// Of the position, after each path was moved to begin at 0.
    AxisError x;
    AxisError y;
    AxisError angle;
    /// Of the motion from one frame to the next.
    AxisError stepX;
    AxisError stepY;
    AxisError stepAngle;
    double travelled = 0;  ///< True way from frame to frame, summed; shake included.
    /// Position error of the last frame per 100 pixels travelled: along the line from the first
    /// true position to the last one, where less than 0 is measured too short, and across it, to
    /// its right in the direction of the sweep.
    double driftAlong = 0;
    double driftAcross = 0;
    double repeatedShare = 0;  ///< Of the frames: those that repeat the last motion.
};

/// @param measured, truth  one row a frame, as many of each; at least one.
PathError pathError(std::span<const SweepRow> measured, std::span<const Trajectory> truth);

}  // namespace orbitwalk::tool
