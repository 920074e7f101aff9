#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <span>

#include "simulate/ColourPlanes.h"

namespace orbitwalk::tool {

struct SensorSettings {
    double gain = 1;   ///< Factor on brightness and colour above black.
    double noise = 0;  ///< Root mean square in grey levels; half as much on the colour planes.
};

/// Reads a picture out as an I420 frame: exposure, Gaussian noise, rounding to 8 bits.
/// @param i420  width * height * 3 / 2 bytes.
void readOut(const ColourPlanes& picture, const SensorSettings& settings, cv::RNG random,
             std::span<std::uint8_t> i420);

}  // namespace orbitwalk::tool
