#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <string>

#include "capture/SweepPath.h"

namespace orbitwalk::tool {

/// The sweep as CSV, one row a frame: frame,x,y,a,flag,repeated. Floats are written with the fewest
/// digits that read back as the same value.
std::string sweepCsv(std::span<const PathPoint> path, std::span<const std::int32_t> flags,
                     const std::set<int>& repeatedFrames);

}  // namespace orbitwalk::tool
