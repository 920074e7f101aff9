#include "stabilization/AspectFit.h"

#include <algorithm>

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

}  // namespace

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

}  // namespace orbitwalk
