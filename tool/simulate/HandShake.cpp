#include "simulate/HandShake.h"

#include <algorithm>
#include <cmath>

namespace orbitwalk::tool {

namespace {

struct Wave {
    double amplitude = 0;
    double frequencyHz = 0;
    double phase = 0;

    double at(double seconds) const {
        return amplitude * std::sin(2 * CV_PI * frequencyHz * seconds + phase);
    }
};

std::vector<Wave> handWaves(double tremor, cv::RNG& random) {
    constexpr int driftWaves = 8, tremorWaves = 4;
    std::vector<Wave> waves;
    for (int i = 0; i < driftWaves; ++i) {
        const double frequency = random.uniform(0.5, 3.0);
        waves.push_back({1 / frequency, frequency, random.uniform(0.0, 2 * CV_PI)});
    }
    for (int i = 0; i < tremorWaves; ++i) {
        const double frequency = random.uniform(8.0, 12.0);
        waves.push_back({tremor, frequency, random.uniform(0.0, 2 * CV_PI)});
    }
    return waves;
}

}  // namespace

std::vector<double> handShake(int frames, double framesPerSecond, const ShakeStrength& strength,
                              cv::RNG random) {
    const std::vector<Wave> waves = handWaves(strength.tremor, random);
    std::vector<double> values(frames);
    double largest = 0;
    for (int k = 0; k < frames; ++k) {
        for (const Wave& wave : waves)
            values[k] += wave.at(k / framesPerSecond);
        largest = std::max(largest, std::abs(values[k]));
    }
    for (double& value : values)
        value *= largest > 0 ? strength.peak / largest : 0;
    return values;
}

}  // namespace orbitwalk::tool
