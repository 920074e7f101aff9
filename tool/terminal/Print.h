#pragma once

#include <concepts>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

/// What a command says, and the only ways it says it. From one thread at a time.
namespace orbitwalk::tool {

/// Text from elsewhere (file names, what a file holds, a library's words) as one harmless line:
/// control characters, what turns the direction of writing and bytes that are no UTF-8 are spelled
/// out (\n, \x1b, \u202e), so that they do nothing to a terminal. Other UTF-8 stays.
std::string shown(std::string_view text);

/// The same for a file's name; a template, so that a string is not taken for one.
template <std::same_as<std::filesystem::path> Path>
std::string shown(const Path& path) {
    return shown(std::string_view(path.native()));
}

/// From here on notes, progress and summaries as text are left out.
void setQuiet(bool quiet);
bool isQuiet();

/// A value a line. Bytes that are not UTF-8, as a file name may hold them, are replaced.
std::string jsonText(const nlohmann::ordered_json& json);

/// Prints on stdout, to the end, as it is. @throws ToolError with the reason when it cannot.
void printOut(std::string_view text);

/// One line on stderr each, made harmless. A note is left out when quiet.
void printNote(std::string_view line);
void printWarning(std::string_view line);
void printError(std::string_view line);

}  // namespace orbitwalk::tool
