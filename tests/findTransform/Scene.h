#pragma once

#include <cmath>
#include <random>
#include <vector>

#include "orbitwalk/Geometry.h"

/// A picture without end, a sum of plane waves, which can be sampled exactly under any motion.
class Scene {
  public:
    explicit Scene(unsigned seed = 1) {
        std::mt19937 random(seed);
        const auto uniform = [&](float low, float high) {
            return low + (high - low) * static_cast<float>(random()) / 4294967296.0f;
        };
        for (int i = 0; i < 16; ++i) {
            // Wavelengths of 7 to 20 pixels of the quarter-size picture: nothing aliases in it.
            const float frequency = 6.2831853f / uniform(28.0f, 80.0f);
            const float direction = uniform(0.0f, 6.2831853f);
            mWaves.push_back({frequency * std::cos(direction), frequency * std::sin(direction),
                              uniform(0.0f, 6.2831853f)});
        }
    }

    /// Luma plane after the picture has turned by pose.a about its origin and then moved by (x, y).
    /// @param step  only every step-th pixel of every step-th row is drawn, the others are black.
    std::vector<unsigned char> frame(int width, int height, const orbitwalk::Trajectory& pose,
                                     int step = 1) const {
        std::vector<unsigned char> luma(static_cast<std::size_t>(width) * height);
        const auto c = static_cast<float>(std::cos(pose.a));
        const auto s = static_cast<float>(std::sin(pose.a));
        for (int row = 0; row < height; row += step) {
            for (int column = 0; column < width; column += step) {
                const auto x = static_cast<float>(column - pose.x);
                const auto y = static_cast<float>(row - pose.y);
                luma[row * width + column] = at(c * x + s * y, c * y - s * x);
            }
        }
        return luma;
    }

  private:
    struct Wave {
        float x, y, phase;
    };

    unsigned char at(float x, float y) const {
        float sum = 0;
        for (const Wave& wave : mWaves)
            sum += std::sin(wave.x * x + wave.y * y + wave.phase);
        return static_cast<unsigned char>(std::lround(128.0f + 110.0f * std::tanh(sum / 4.0f)));
    }

    std::vector<Wave> mWaves;
};
