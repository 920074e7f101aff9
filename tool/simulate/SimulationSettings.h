#pragma once

#include <cstdint>
#include <opencv2/core.hpp>

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

/// What a stream of random numbers is for: streams of one seed are independent, so that an option
/// for one thing changes nothing else.
enum class Randomness : std::uint64_t { ShakeX, ShakeY, Roll, Scene, Object, Noise };

/// A generator that gives the same numbers on every machine.
/// @param index  distinguishes streams of one purpose, such as the frames.
inline cv::RNG randomStream(std::uint64_t seed, Randomness purpose, std::uint64_t index = 0) {
    // The finaliser of SplitMix64 (Steele, Lea, Flood 2014), so that neighbouring seeds share
    // nothing.
    const auto mixed = [](std::uint64_t z) {
        z += 0x9e3779b97f4a7c15u;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
        return z ^ (z >> 31);
    };
    return cv::RNG(mixed(mixed(mixed(seed) + static_cast<std::uint64_t>(purpose)) + index));
}

}  // namespace orbitwalk::tool
