#pragma once

#include <filesystem>
#include <optional>
#include <set>

#include "sweep/Summary.h"

namespace orbitwalk::tool {

struct CaptureOptions {
    std::filesystem::path video;
    std::filesystem::path directory;
    std::optional<int> orientation;  ///< Degrees; else 0.
    bool frontCameraFlipped = false;
    std::optional<OBWDirection> direction;  ///< Without one it is told from the measured motion.
    std::optional<int> first;               ///< Else the first frame of the video.
    std::optional<int> last;                ///< Else the last frame of the video.
    std::set<int> skip;
    bool realtime = false;
};

/// Captures a video into sweep.mp4, sweep.obw, sweep.csv and sweep.json, the summary, in the
/// directory. They appear together when all are complete; a capture that fails or is interrupted by
/// a signal leaves nothing behind. On the main thread. @throws ToolError, MediaError.
Summary captureSweep(const CaptureOptions& options);

}  // namespace orbitwalk::tool
