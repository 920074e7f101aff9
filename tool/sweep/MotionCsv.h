#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "orbitwalk/refine/Motion.h"

/// refined.csv: the motion of the picture as the refinement measured it,
/// `frame,dx,dy,da,ds,measured`, the frames counted from 0: since the frame before, about the
/// picture's centre, pixels of the full-size frame, x right, y down, radians, natural logarithm of
/// the scale. Row 0 is zero.
namespace orbitwalk::tool {

/// The shortest digits that read back to the same double. What is not measured is written as zero.
std::string motionCsv(std::span<const refine::FrameMotion> motions);

/// @param size  of the frames, whose centre the motions are about.
/// @throws ToolError that names the first line that is no row; values must be finite, measured 0 or
/// 1. The quality of a motion is not kept.
std::vector<refine::FrameMotion> parseMotionCsv(std::string_view text, FrameSize size);

/// @param frames  number of rows to expect.
/// @throws ToolError that names the file when it cannot be read or is no such table.
std::vector<refine::FrameMotion> readMotionCsv(const std::filesystem::path& file, FrameSize size,
                                               int frames);

}  // namespace orbitwalk::tool
