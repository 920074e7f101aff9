#include "common/FixedPoint.h"

#include <cmath>
#include <limits>

std::int32_t truncateToInt32(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(value))
        return 0;
    if (value >= static_cast<double>(Limits::max()))
        return Limits::max();
    if (value <= static_cast<double>(Limits::min()))
        return Limits::min();
    return static_cast<std::int32_t>(value);
}

std::int32_t toFixedPoint(double value) {
    return truncateToInt32(value * 1000000.0);
}
