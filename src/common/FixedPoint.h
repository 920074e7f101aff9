#pragma once

#include <cstdint>

/// Conversion toward zero without an undefined corner: out of range saturates and NaN gives 0, as
/// the convert instruction of the ARM target does.
std::int32_t truncateToInt32(double value);

/// An element of the motion record: the value times 1000000 in double precision, truncated.
std::int32_t toFixedPoint(double value);
