#pragma once

#include <span>
#include <vector>

#include "orbitwalk/Geometry.h"

namespace orbitwalk {

/// Gaussian average of each path point over its neighbours, sigma half the radius. Beyond its ends
/// the path goes on as its point reflection about the last (first) point, which continues its
/// slope.
///
/// @param radius  taps on either side, limited to the path's length - 1; below 1 gives no points.
/// @return as many points as the path has. A path of one point gives not-a-number in every
///         component: its kernel has no width.
std::vector<Trajectory> gaussianSmooth(std::span<const Trajectory> path, int radius);

}  // namespace orbitwalk
