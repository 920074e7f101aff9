#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "orbitwalk/Geometry.h"

/// truth.csv: how the picture of a simulated clip truly moves, `frame,dx,dy,da,x,y,a`, the frames
/// counted from 0.
namespace orbitwalk::tool {

/// A frame's motion since the previous one, and the plain sum of these so far.
struct TrueMotion {
    Trajectory step;
    Trajectory sum;
};

/// The shortest digits that read back to the same double.
std::string truthCsv(std::span<const TrueMotion> truth);

/// @return where the picture stands in each frame, relative to the first: the sums.
/// @throws ToolError that names the first line that is no row; values must be finite.
std::vector<Trajectory> parseTruthCsv(std::string_view text);

/// @param frames  number of rows to expect; of a clip that went on when the sweep was full, the
/// first ones.
/// @throws ToolError that names the file when it cannot be read or is no such table.
std::vector<Trajectory> readTruthCsv(const std::filesystem::path& file, int frames);

}  // namespace orbitwalk::tool
