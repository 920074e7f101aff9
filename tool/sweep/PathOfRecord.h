#pragma once

#include <span>

#include "orbitwalk/RecordReader.h"
#include "sweep/SweepTable.h"

namespace orbitwalk::tool {

/// The record does not hold the path, only what came of it.
/// @param path  one row a frame of the record.
/// @throws ToolError with what differs, when the record cannot have come of the path: by its flags,
/// or by the crop that smoothing it leads to.
void requirePathOfRecord(std::span<const SweepRow> path, const RecordReader& record);

}  // namespace orbitwalk::tool
