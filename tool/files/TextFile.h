#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace orbitwalk::tool {

inline constexpr std::size_t kTextFileLimit = 64 << 20;

/// The content of a file, which may be a pipe: it is waited for, until a signal comes (see
/// SignalGuard). No byte beyond the limit is read.
/// @throws ToolError with the file's name and the reason; with the signal's exit code.
std::string readFileUpTo(const std::filesystem::path& file, std::size_t limit);

/// The whole content of a file; an empty one is empty text.
/// @throws ToolError as readFileUpTo, and for a file with more bytes than the limit.
std::string readTextFile(const std::filesystem::path& file, std::size_t limit = kTextFileLimit);

}  // namespace orbitwalk::tool
