#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <span>

#include "media/ColourMatrix.h"

namespace orbitwalk::tool {

/// Source point of a target pixel p: origin + p.x * stepX + p.y * stepY, pixel centres at whole
/// numbers.
struct SamplingGrid {
    cv::Point2d origin;
    cv::Point2d stepX;
    cv::Point2d stepY;

    cv::Point2d at(double x, double y) const { return origin + x * stepX + y * stepY; }
};

/// Fills target with the source at the grid's points, by Lagrange's interpolation of eight by eight
/// samples with phases of a thousandth of a pixel. It is exact for polynomials of seventh degree
/// and so moves nothing: a windowed sinc such as Lanczos's shifts smooth pictures by up to a
/// hundredth of a pixel depending on the phase, and an image library's phases are a
/// thirty-secondth. The source must be smooth enough for the grid's step, and the grid stay four
/// samples away from its edges; points beyond take the nearest allowed samples.
void resample(const cv::Mat1f& source, const SamplingGrid& grid, cv::Mat1f& target);

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
