#pragma once

#include <cstdint>
#include <opencv2/core.hpp>

namespace orbitwalk::tool {

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
