#pragma once

#include <opencv2/core.hpp>
#include <vector>

namespace orbitwalk::tool {

/// One axis of a hand that holds a camera, a value a frame: slow drift of 0.5 to 3 Hz, stronger the
/// slower, and a physiological tremor of 8 to 12 Hz a fifth as large. Sines of random frequency
/// and phase, scaled so that the largest value's magnitude is peak.
std::vector<double> handShake(int frames, double framesPerSecond, double peak, cv::RNG random);

}  // namespace orbitwalk::tool
