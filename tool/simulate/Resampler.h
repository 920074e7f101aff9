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

/// Fills target with the source at the grid's points, by a separable Lanczos filter of eight by
/// eight samples whose phases are a thousandth of a pixel: an image library's thirty-secondth would
/// show in the motion. The source must be smooth enough for the grid's step, and the grid stay four
/// samples away from its edges; points beyond take the nearest allowed samples.
void resample(const cv::Mat1f& source, const SamplingGrid& grid, cv::Mat1f& target);

}  // namespace orbitwalk::tool
