#pragma once

/// @file
/// The shared value types as OpenCV's, and back. The one place where they are converted.

#include <opencv2/core/matx.hpp>
#include <opencv2/core/types.hpp>

#include "orbitwalk/Geometry.h"

namespace orbitwalk {

inline cv::Size toCv(FrameSize size) {
    return {size.width, size.height};
}
inline cv::Rect toCv(const CropRectangle& area) {
    return {area.x, area.y, area.width, area.height};
}
inline cv::Point2d toCv(PicturePoint p) {
    return {p.x, p.y};
}
/// [s cos a, -s sin a, tx; s sin a, s cos a, ty], acting on column vectors of pixel coordinates.
inline cv::Matx23d toCv(const SimilarityTransform& map) {
    const PicturePoint origin = map({0, 0});
    const PicturePoint xAxis = map.linear({1, 0});
    return {xAxis.x, -xAxis.y, origin.x, xAxis.y, xAxis.x, origin.y};
}

inline FrameSize fromCv(cv::Size size) {
    return {size.width, size.height};
}
inline CropRectangle fromCv(const cv::Rect& area) {
    return {area.x, area.y, area.width, area.height};
}
inline PicturePoint fromCv(cv::Point2d p) {
    return {p.x, p.y};
}

}  // namespace orbitwalk
