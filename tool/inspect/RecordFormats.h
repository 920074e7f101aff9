#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

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

/// A matrix of the record as people read it: the correction that it stands for.
struct MatrixEntry {
    int index;
    double dx;                          ///< Where the output picture puts the frame's point (0, 0),
    double dy;                          ///< in pixels, y down.
    double angle;                       ///< Radians, positive from x to y.
    std::array<std::int32_t, 9> fixed;  ///< As written, row-major, times 1000000.
};

struct FrameEntry {
    MatrixEntry matrix;
    std::int32_t flag;
    bool rendered;
    double displacement;  ///< Pixels along the sweep.
};

struct RecordEntries {
    std::vector<MatrixEntry> left;
    std::vector<FrameEntry> frames;
    std::vector<MatrixEntry> right;
};

RecordEntries listEntries(const RecordReader& record);

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
