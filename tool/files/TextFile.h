#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace orbitwalk::tool {

inline constexpr std::size_t kTextFileLimit = 64 << 20;

/// The whole content of a file; an empty one is empty text.
/// @throws ToolError with the file's name and the reason, also for a file with more bytes than the
/// limit.
std::string readTextFile(const std::filesystem::path& file, std::size_t limit = kTextFileLimit);

}  // namespace orbitwalk::tool
