#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

namespace orbitwalk::tool {

/// A row of sweep.csv: where the picture stands in a frame as the engine measured it, its motion
/// summed since the first frame. Pixels of the full-size frame, x to the right, y down; radians.
struct SweepRow {
    float x = 0;
    float y = 0;
    float a = 0;
    int flag = 0;           ///< 1: the frame was offered for rendering.
    bool repeated = false;  ///< Its motion could not be measured and repeats the last one.
};

/// Reads the text of a sweep.csv, `frame,x,y,a,flag,repeated` with the frames counted from 0.
/// @throws ToolError that names the first line that is none; values must be finite, flag and
/// repeated 0 or 1.
std::vector<SweepRow> parseSweepTable(std::string_view text);

/// @param frames  number of rows to expect.
/// @throws ToolError that names the file when it cannot be read or is no such table.
std::vector<SweepRow> readSweepTable(const std::filesystem::path& file, int frames);

}  // namespace orbitwalk::tool
