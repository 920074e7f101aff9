#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "orbitwalk/RecordReader.h"

namespace orbitwalk::tool {

struct InspectedRecord {
    RecordReader record;
    std::optional<bool> vertical;  ///< See isVertical of a sweep.
};

/// Opens a record file, or that of a directory which capture wrote, and checks this one as
/// readSweep does.
/// @param refined  the record of the refinement in the directory.
/// @throws UsageError when a file alone is to be refined; ToolError in one line.
InspectedRecord openInspected(const std::filesystem::path& path, bool refined);

/// For people, angles in degrees: the header with the codes' names, then a line a matrix.
/// @param withFixed  adds the nine fixed-point elements to each line.
std::string recordAsText(const InspectedRecord& inspected, bool withFixed);

/// One object: the header under the fields' names, crop, leftBorder, frames and rightBorder with
/// dx, dy (pixels), angle (radians) and the nine fixed-point elements. vertical is null for a
/// record alone, which cannot tell.
std::string recordAsJson(const InspectedRecord& inspected);

/// A line a matrix under one line of column names, in playing order: left border frames, frames,
/// right border frames. Border frames leave flag, rendered and displacement empty.
std::string recordAsCsv(const RecordReader& record);

}  // namespace orbitwalk::tool
