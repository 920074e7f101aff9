#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "orbitwalk/Geometry.h"

/// sweep.csv: the measured path, `frame,x,y,a,flag,repeated`, the frames counted from 0.
namespace orbitwalk::tool {

struct SweepRow {
    /// Where the picture stands in the frame as the engine measured it, its motion summed since the
    /// first frame. The engine's floats: the file holds the digits of a float.
    Trajectory position;
    int flag = 0;           ///< 1: the frame was offered for rendering.
    bool repeated = false;  ///< Its motion could not be measured and repeats the last one.
};

/// Top-left pixel of the region that the engine measures in: it keeps every fourth pixel, from the
/// first, and leaves a fifth of the columns and rows out at each side. The motions of a path are
/// about this point, on which the shift that goes with a turn depends.
PicturePoint measuringOrigin(FrameSize size);

/// Floats are written with the fewest digits that read back as the same value.
std::string sweepCsv(std::span<const SweepRow> path);

/// @throws ToolError that names the first line that is no row; values must be finite, flag and
/// repeated 0 or 1.
std::vector<SweepRow> parseSweepCsv(std::string_view text);

/// @param frames  number of rows to expect.
/// @throws ToolError that names the file when it cannot be read or is no such table.
std::vector<SweepRow> readSweepCsv(const std::filesystem::path& file, int frames);

}  // namespace orbitwalk::tool
