#include "stabilization/CropBounds.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "common/FixedPoint.h"

namespace orbitwalk {

CropBounds wholeFrame(FrameSize size) {
    return {0, size.width, 0, size.height};
}

CropBounds framePixels(FrameSize size) {
    return {0, size.width - 1, 0, size.height - 1};
}

std::array<cv::Point2f, 4> frameCorners(FrameSize size) {
    const auto w = static_cast<float>(size.width);
    const auto h = static_cast<float>(size.height);
    return {cv::Point2f(0, 0), cv::Point2f(0, h), cv::Point2f(w, 0), cv::Point2f(w, h)};
}

CropBounds narrowed(const CropBounds& bounds, std::span<const cv::Point2f> corners,
                    const Trajectory& correction) {
    const double c = std::cos(correction.a);
    const double s = std::sin(correction.a);
    int x[4];
    int y[4];
    for (int i = 0; i < 4; ++i) {
        const double px = corners[i].x;
        const double py = corners[i].y;
        x[i] = truncateToInt32(c * px - s * py + correction.x);
        y[i] = truncateToInt32(s * px + c * py + correction.y);
    }
    // The start values cap what one frame can contribute, whatever its corners say.
    const int left = std::max({-10000, x[0], x[1]});
    const int right = std::min({10000, x[2], x[3]});
    const int top = std::max({-10000, y[0], y[2]});
    const int bottom = std::min({10000, y[1], y[3]});
    return {std::max(bounds.minX, left), std::min(bounds.maxX, right), std::max(bounds.minY, top),
            std::min(bounds.maxY, bottom)};
}

bool keepsEnough(const CropBounds& bounds, FrameSize size, double cropRatio) {
    const std::int64_t width = std::int64_t{bounds.maxX} - bounds.minX;
    const std::int64_t height = std::int64_t{bounds.maxY} - bounds.minY;
    return width > 0 && height > 0 && width >= truncateToInt32(cropRatio * size.width) &&
           height >= truncateToInt32(cropRatio * size.height);
}

}  // namespace orbitwalk
