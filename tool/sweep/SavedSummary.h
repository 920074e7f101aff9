#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "sweep/Summary.h"

namespace orbitwalk::tool {

/// What of a capture only its sweep.json tells.
struct SavedSummary {
    std::string video;  ///< Name of the captured file, without its folder.
    int width = 0;
    int height = 0;
    int frames = 0;
    bool truncated = false;
    StageSeconds seconds;
};

/// Reads the text of a sweep.json. @throws ToolError when it is none.
SavedSummary parseSavedSummary(std::string_view text);

/// Nothing where there is no such file, as beside sweeps from before it was written.
/// @throws ToolError that names the file when it cannot be read or is no summary.
std::optional<SavedSummary> readSavedSummary(const std::filesystem::path& file);

}  // namespace orbitwalk::tool
