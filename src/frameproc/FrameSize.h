#pragma once

#include <cstdint>

namespace orbitwalk {

/// Bytes of a YUV 4:2:0 frame of 12 bits per pixel: (width * height * 3) >> 1.
/// @throws std::length_error when width * height * 3 does not fit a signed 32-bit integer.
std::int32_t yuv420FrameBytes(std::int32_t width, std::int32_t height);

}  // namespace orbitwalk
