#pragma once

#include <cstdio>
#include <filesystem>
#include <span>
#include <string>

/// SHA-256 in 64 lower-case hexadecimal digits.
namespace orbitwalk::tool {

std::string sha256(std::span<const char> bytes);

/// Of all that a stream holds, from its beginning; what was written to it before is included. The
/// position is at the end afterwards.
/// @throws ToolError with the reason when it cannot be read; with the signal's exit code once one
/// has come, as the next one (see SignalGuard).
std::string sha256OfStream(std::FILE* stream);

/// @throws ToolError with the file's name and the reason; also when it is no regular file, which
/// may have no end.
std::string sha256OfFile(const std::filesystem::path& file);

}  // namespace orbitwalk::tool
