#pragma once

#include <cstdint>
#include <span>

#include "sweep/Playlist.h"
#include "sweep/Tables.h"

/// What a sweep's own files say of it: the record alone, and the measured path beside the true one.
namespace orbitwalk::tool {

/// What a record alone says about the sweep that a player shows. Pixels of the full-size frame.
struct SweepFacts {
    int frames = 0;
    int renderedFrames = 0;
    double keptView = 0;             ///< Area of the crop rectangle as a share of the frame's.
    std::int64_t missingPixels = 0;  ///< Of the rendered frames, see missingPixels of render.
    std::int64_t missingBorderPixels = 0;  ///< Of the frames added before and after the sweep.
    /// Correction of the frame's centre, over the rendered frames. Its mean is what the smoothed
    /// path lags behind the measured one.
    double meanCorrectionX = 0;
    double meanCorrectionY = 0;
    double largestCorrection = 0;
    double largestTurn = 0;  ///< Degrees.
};

SweepFacts sweepFacts(const RecordReader& record);

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
