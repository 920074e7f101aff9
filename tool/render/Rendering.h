#pragma once

#include <filesystem>
#include <opencv2/core/types.hpp>
#include <optional>
#include <string>
#include <vector>

#include "render/SteadyVideo.h"
#include "sweep/Sweep.h"
#include "sweep/Verdict.h"

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

/// One file that was written.
struct RenderedFile {
    std::filesystem::path path;
    cv::Size size;
    double seconds = 0;  ///< Wall-clock time that it took.
};

struct RenderedVideo {
    RenderedFile file;
    SteadyVideo video;
};

struct RenderSummary {
    std::optional<RenderedVideo> video;
    std::optional<RenderedFile> strip;
    std::optional<RenderedFile> panorama;
    CropRectangle crop;                    ///< Of the frame, what is shown.
    int rotation = 0;                      ///< See displayRotation.
    std::optional<Steadiness> steadiness;  ///< None where there is no measured path.
    std::vector<std::string> warnings;
    double seconds = 0;  ///< In all.
};

/// Plays a captured sweep into a video and pictures, which appear together when all are complete; a
/// signal or a failure leaves nothing behind. On the main thread.
/// @throws UsageError when the options do not go together; ToolError, MediaError.
RenderSummary renderSweep(const RenderOptions& options);

/// A line a file, and the verdict.
std::string toText(const RenderSummary& summary);
std::string toJsonText(const RenderSummary& summary);

}  // namespace orbitwalk::tool
