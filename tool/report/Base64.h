#pragma once

#include <string>
#include <string_view>

namespace orbitwalk::tool {

/// With padding, on one line.
std::string base64(std::string_view bytes);

}  // namespace orbitwalk::tool
