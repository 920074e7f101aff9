#pragma once

#include "render/RenderSummary.h"
#include "render/SteadyVideo.h"
#include "sweep/Sweep.h"

namespace orbitwalk::tool {

struct RenderOptions {
    std::filesystem::path directory;  ///< Of the sweep.
    std::filesystem::path video;      ///< To write, as the next two; empty: not wanted.
    std::filesystem::path strip;
    std::filesystem::path panorama;
    SteadySettings steady;
    RecordBy recordBy = RecordBy::Engine;
    bool replaceForeign = false;  ///< Files that the tool did not write may be replaced.
};

/// Plays a captured sweep into a video and pictures, which appear together when all are complete; a
/// signal or a failure leaves nothing behind. On the main thread.
/// @throws UsageError when the options do not go together; ToolError, MediaError.
RenderSummary renderSweep(const RenderOptions& options);

}  // namespace orbitwalk::tool
