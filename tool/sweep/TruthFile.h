#pragma once

#include <cstdio>
#include <span>

#include "simulate/PictureMotion.h"

namespace orbitwalk::tool {

/// Writes the truth as comma-separated values: frame number, motion since the previous frame (dx,
/// dy in pixels, da in radians) and its running sum (x, y, a). The shortest digits that read back
/// to the same double, whatever the locale. Errors stay in the stream's error flag.
void writeTruth(std::span<const TrueMotion> truth, std::FILE* stream);

}  // namespace orbitwalk::tool
