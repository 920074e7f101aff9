#pragma once

#include <span>

#include "orbitwalk/Geometry.h"

namespace orbitwalk {

/// Straight line over the abscissas 0, 1, 2, ... with the sums it was fitted from.
struct LineFit {
    float sumK = 0;
    float sumK2 = 0;
    float sumX = 0;
    float sumKX = 0;
    float slopeNumerator = 0;
    float slopeDenominator = 0;
    float slope = 0;
    float intercept = 0;

    float at(int k) const { return intercept + slope * static_cast<float>(k); }
};

/// Least-squares line through one axis of path points, oldest first, all in single precision. The
/// oldest point is truncated to whole pixels first.
/// @param points  at least two; fewer have no slope and give values that are not numbers.
LineFit fitLine(std::span<const Trajectory> points, double Trajectory::*axis);

}  // namespace orbitwalk
