#pragma once

#include <filesystem>
#include <string>

namespace orbitwalk::tool {

/// The whole content of a file; an empty one is empty text.
/// @throws ToolError with the file's name and the reason.
std::string readTextFile(const std::filesystem::path& file);

}  // namespace orbitwalk::tool
