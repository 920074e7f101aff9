#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace orbitwalk {

/// Conversion toward zero without an undefined corner: out of range saturates and NaN gives 0, as
/// the convert instruction of the ARM target does.
inline std::int32_t truncateToInt32(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(value))
        return 0;
    if (value >= static_cast<double>(Limits::max()))
        return Limits::max();
    if (value <= static_cast<double>(Limits::min()))
        return Limits::min();
    return static_cast<std::int32_t>(value);
}

/// An element of the motion record: the value times 1000000 in double precision, truncated.
inline std::int32_t toFixedPoint(double value) {
    return truncateToInt32(value * 1000000.0);
}

}  // namespace orbitwalk
