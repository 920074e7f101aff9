#pragma once

#include <cstdint>
#include <opencv2/core/types.hpp>

#include "sweep/Playlist.h"

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

}  // namespace orbitwalk::tool
