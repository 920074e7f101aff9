#include "stabilization/CropSmoothing.h"

#include <cmath>
#include <cstdint>

#include "common/FixedPoint.h"

namespace orbitwalk {

namespace {

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
