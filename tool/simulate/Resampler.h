#pragma once

#include <opencv2/core.hpp>

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

}  // namespace orbitwalk::tool
