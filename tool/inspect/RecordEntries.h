#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "orbitwalk/RecordReader.h"

namespace orbitwalk::tool {

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

}  // namespace orbitwalk::tool
