#pragma once

#include <functional>
#include <opencv2/core/mat.hpp>

#include "sweep/ShotReader.h"

namespace orbitwalk::tool {

inline constexpr int kSheetColumns = 6;

/// Evenly chosen from the sweep's frames, the first and the last among them, without border
/// frames; all of them where there are fewer.
std::vector<Shot> sheetShots(const RecordReader& record, int columns);

/// One column a frame: as recorded above, as a player shows it below, both upright and each with a
/// caption.
/// @param progress  told the number of frames shown so far.
/// @throws ToolError, MediaError: see ShotReader.
cv::Mat3b contactSheet(const Sweep& sweep, const std::function<void(int)>& progress);

}  // namespace orbitwalk::tool
