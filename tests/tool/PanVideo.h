#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace test_support {

/// A window that moves over a textured scene. The displacement filter keeps the smaller motions, so
/// the motion finder wants many corners and motions that differ: a step of ten, two and a half
/// reduced pixels, falls to either side of a tenth with the noise.
struct Pan {
    int width = 960;
    int height = 720;
    int frames = 12;
    int stepX = 0;  ///< Pixels that the picture moves from frame to frame, to the right.
    int stepY = 0;  ///< Pixels that the picture moves from frame to frame, down.
};

/// The frames, in I420.
std::vector<std::vector<std::uint8_t>> panFrames(const Pan& pan);

/// Writes the frames as H.264 at 30 frames a second.
void writePanVideo(const std::filesystem::path& file, const Pan& pan);

}  // namespace test_support
