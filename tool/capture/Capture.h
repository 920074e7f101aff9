#pragma once

#include <chrono>
#include <filesystem>
#include <optional>

#include "capture/Notes.h"
#include "capture/SweepRange.h"
#include "refine/Refinement.h"
#include "sweep/Summary.h"

namespace orbitwalk::tool {

struct CaptureOptions {
    std::filesystem::path video;
    std::filesystem::path directory;
    std::optional<std::chrono::microseconds> start;     ///< Else the video's first frame.
    std::optional<std::chrono::microseconds> duration;  ///< Else to the video's last frame.
    std::optional<int> orientation;                     ///< Degrees; else 0.
    bool frontCameraFlipped = false;
    RangeOptions range;  ///< Counts the frames that start and duration leave.
    bool realtime = false;
    std::optional<PlanWish> refine;  ///< Refines the sweep too, from the same decoded frames.
    bool replaceForeign = false;     ///< Files that the tool did not write may be replaced.
};

struct CaptureResult {
    Summary summary;
    VideoFacts video;
    std::optional<RefinedSummary> refined;  ///< When it was asked for.
};

/// Captures a video into sweep.mp4, sweep.obw, sweep.csv and sweep.json, the summary, in the
/// directory, and with them what refineSweep would write of the video. They appear together when
/// all are complete; a capture that fails or is interrupted by a signal leaves nothing behind. On
/// the main thread. @throws ToolError, MediaError.
CaptureResult captureSweep(const CaptureOptions& options);

}  // namespace orbitwalk::tool
