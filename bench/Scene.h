#pragma once

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace bench {

/// I420 frames of a smooth scene with corners everywhere and a little noise, moving left by some
/// pixels a frame, with a different motion each time.
inline std::vector<std::vector<std::uint8_t>> panningFrames(int width, int height, int count) {
    std::mt19937 random(1);
    std::vector<std::vector<std::uint8_t>> frames;
    double offset = 0;
    for (int n = 0; n < count; ++n, offset += 8 + static_cast<double>(random() % 100) / 50) {
        std::vector<std::uint8_t> frame(static_cast<std::size_t>(width) * height * 3 / 2, 128);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const double u = x + offset;
                const double value = std::sin(u * 0.061) * std::sin(y * 0.073 + u * 0.002) +
                                     0.6 * std::sin(u * 0.017 + y * 0.023);
                frame[static_cast<std::size_t>(y) * width + x] =
                    static_cast<std::uint8_t>(120 + 70 * value + static_cast<double>(random() % 4));
            }
        frames.push_back(std::move(frame));
    }
    return frames;
}

}  // namespace bench
