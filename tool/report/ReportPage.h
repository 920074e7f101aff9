#pragma once

#include <string>
#include <string_view>

namespace orbitwalk::tool {

/// The finished page: one HTML file with its styles, its scripts and the data, which loads nothing.
/// @param json  see reportJson.
std::string reportPage(std::string_view json);

}  // namespace orbitwalk::tool
