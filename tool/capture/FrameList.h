#pragma once

#include <set>
#include <string_view>

namespace orbitwalk::tool {

/// Reads a list of frame numbers and inclusive ranges, as in "3,7,10-14". Blanks are not allowed.
/// @throws ToolError for anything else, a range that runs backwards, or a number beyond the frames
/// that a sweep can hold.
std::set<int> parseFrameList(std::string_view text);

}  // namespace orbitwalk::tool
