#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <span>

#include "media/ColourMatrix.h"
#include "simulate/Resampler.h"

namespace orbitwalk::tool {

/// A picture as 8-bit video codes it (luma 16 to 235, colour around 128), before rounding: luma at
/// full size, the two colour planes at half.
struct ColourPlanes {
    cv::Mat1f y;
    cv::Mat1f cb;
    cv::Mat1f cr;
};

/// Planes for a frame; width and height even.
ColourPlanes blankPlanes(cv::Size size);

/// The picture as a lens of the given Gaussian sigma shows it, in pixels of the picture.
ColourPlanes softPlanes(const cv::Mat3b& bgr, double sigma, media::ColourMatrix matrix);

/// Fills a frame from a scene. @param grid  scene point of each full-size pixel of the frame.
void resample(const ColourPlanes& scene, const SamplingGrid& grid, ColourPlanes& frame);

struct SensorSettings {
    double gain = 1;   ///< Factor on brightness and colour above black.
    double noise = 0;  ///< Root mean square in grey levels; half as much on the colour planes.
};

/// Reads a picture out as an I420 frame: exposure, Gaussian noise, rounding to 8 bits.
/// @param i420  width * height * 3 / 2 bytes.
void readOut(const ColourPlanes& picture, const SensorSettings& settings, cv::RNG random,
             std::span<std::uint8_t> i420);

}  // namespace orbitwalk::tool
