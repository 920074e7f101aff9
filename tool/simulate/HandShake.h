#pragma once

#include <opencv2/core.hpp>
#include <vector>

namespace orbitwalk::tool {

/// How far a hand goes at most, and how large its tremor is for a drift of one.
struct ShakeStrength {
    double peak = 0;
    double tremor = 0;
};

/// One axis of a hand that holds a camera, a value a frame: slow drift of 0.5 to 3 Hz, stronger the
/// slower, and a physiological tremor of 8 to 12 Hz. Sines of random frequency and phase, scaled so
/// that the largest value's magnitude is the peak.
std::vector<double> handShake(int frames, double framesPerSecond, const ShakeStrength& strength,
                              cv::RNG random);

}  // namespace orbitwalk::tool
