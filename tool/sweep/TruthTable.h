#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

namespace orbitwalk::tool {

/// Where the picture truly stands in a frame, relative to the first: its motions from frame to
/// frame summed. Pixels of the full-size frame, x to the right, y down; radians.
struct TruthRow {
    double x = 0;
    double y = 0;
    double a = 0;
};

/// Reads the text of a truth.csv, `frame,dx,dy,da,x,y,a` with the frames counted from 0.
/// @throws ToolError that names the first line that is none; values must be finite.
std::vector<TruthRow> parseTruthTable(std::string_view text);

/// @param frames  number of rows to expect; of a clip that went on when the sweep was full, the
/// first ones.
/// @throws ToolError that names the file when it cannot be read or is no such table.
std::vector<TruthRow> readTruthTable(const std::filesystem::path& file, int frames);

}  // namespace orbitwalk::tool
