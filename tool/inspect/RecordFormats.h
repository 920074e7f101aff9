#pragma once

#include <string>

#include "orbitwalk/RecordReader.h"

namespace orbitwalk::tool {

/// For people: the header with the codes' names, then a line a matrix.
/// @param withFixed  adds the nine fixed-point elements to each line.
std::string recordAsText(const RecordReader& record, bool withFixed);

/// One object: the header under the fields' names, crop, leftBorder, frames and rightBorder with
/// dx, dy (pixels), angle (radians) and the nine fixed-point elements.
std::string recordAsJson(const RecordReader& record);

/// A line a matrix under one line of column names, in playing order: left border frames, frames,
/// right border frames. Border frames leave flag, rendered and displacement empty.
std::string recordAsCsv(const RecordReader& record);

}  // namespace orbitwalk::tool
