#include "stabilization/CropBounds.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "common/FixedPoint.h"

namespace orbitwalk {

namespace {

/// Takes the excess off both ends of [low, high], which lies in a frame side of the given length.
void trim(int& low, int& high, int length, float excess) {
    const auto before = static_cast<float>(std::max(low, 1));
    const auto after = static_cast<float>(std::max(length - high, 1));
    const float weight = before / (before + after);
    low = truncateToInt32(static_cast<float>(low) + weight * excess);
    high = truncateToInt32(high - (1.0 - weight) * excess);
}

/// Share of the side that is left when the path spans its own extent and this much more.
double keptShare(const CropSmoothingSide& side, double further) {
    return 1 - (side.max - side.min + further) / side.length;
}

bool spans(const CropSmoothingSide& side, double value) {
    return side.max >= value && side.min <= value;
}

/// Between the two pins, each weighted by the other's distance to its end of the path.
CropSmoothingPin pinBetween(const CropSmoothingSide& side, int low, int high) {
    if (low == high)
        return {high, keptShare(side, 0)};
    const double toLow = std::abs(low - side.min);
    const double toHigh = std::abs(high - side.max);
    const int pin = truncateToInt32((low * toHigh + high * toLow) / (toLow + toHigh));
    const double outside = side.max < pin ? pin - side.max : side.min - pin;
    return {pin, keptShare(side, spans(side, pin) ? 0 : outside)};
}

}  // namespace

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

CropBounds fitToAspect(const CropBounds& bounds, FrameSize size) {
    CropBounds fitted = bounds;
    const auto width = static_cast<double>(bounds.maxX - bounds.minX);
    const auto height = static_cast<double>(bounds.maxY - bounds.minY);
    const double keptX = width / size.width;
    const double keptY = height / size.height;
    const float aspect = static_cast<float>(size.width) / static_cast<float>(size.height);
    if (keptX > keptY)
        trim(fitted.minX, fitted.maxX, size.width,
             static_cast<float>(width) - static_cast<float>(height * aspect));
    else if (keptX < keptY)
        trim(fitted.minY, fitted.maxY, size.height,
             static_cast<float>(height) - static_cast<float>(width / aspect));
    return fitted;
}

CropSmoothingPin pinToMargins(const CropSmoothingSide& side) {
    const auto room = static_cast<double>(std::int64_t{side.length} - side.marginHigh);
    const int low = truncateToInt32(side.marginLow + side.min);
    const int high = truncateToInt32(side.max - room);
    if (side.min >= 0 && side.max >= 0)
        return {high, keptShare(side, spans(side, high) ? 0 : std::abs(high - side.min))};
    if (side.min <= 0 && side.max <= 0)
        return {low, keptShare(side, spans(side, low) ? 0 : std::abs(low - side.max))};
    return pinBetween(side, low, high);
}

}  // namespace orbitwalk
