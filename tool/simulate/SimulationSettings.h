#pragma once

#include <cstdint>

#include "media/MediaTypes.h"
#include "orbitwalk/Geometry.h"

namespace orbitwalk::tool {

/// Where the camera goes; the picture moves the other way.
enum class SweepDirection { Left2Right, Right2Left, Top2Bottom, Bottom2Top };

/// A virtual sweep. Pixels are those of the clip's frames. The defaults are what a phone's video
/// camera gives: a lens and sensor that soften by a pixel, some noise, a hand that is not quite
/// steady.
struct SimulationSettings {
    FrameSize size{1920, 1080};  ///< Even numbers.
    int frames = 90;
    media::FrameRate rate;
    SweepDirection direction = SweepDirection::Left2Right;
    double speed = 12;         ///< Pixels a frame.
    double shake = 8;          ///< Largest departure from the straight sweep, pixels an axis.
    double roll = 0.008;       ///< Largest departure from level, radians.
    double softness = 1;       ///< Sigma of the lens's Gaussian, pixels.
    double noise = 1.5;        ///< Root mean square of the luma's noise, grey levels.
    double exposureDrift = 0;  ///< Change of brightness from first to last frame; 0.1: 10 % up.
    double object = 0;         ///< Height of a crossing object as a share of the frame's; 0: none.
    std::uint64_t seed = 1;
};

}  // namespace orbitwalk::tool
