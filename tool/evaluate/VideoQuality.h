#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <opencv2/core/types.hpp>
#include <optional>

#include "evaluate/Comparison.h"
#include "evaluate/ResidualMotion.h"

namespace orbitwalk::tool {

struct VideoQuality {
    int frames = 0;
    cv::Size size;
    std::optional<ResidualMotion> residual;
    std::int64_t blackPixels = 0;  ///< Of all frames, see blackBorder.
    int framesWithBlack = 0;
    std::optional<SourceComparison> source;
};

/// Judges a video by its pictures alone: decodes it and its source beside each other, and works on
/// several frames side by side. The frames in memory, two a core and two, depend on the machine;
/// the figures do not.
/// @param progress  told the number of frames judged so far, on any thread.
/// @throws ToolError when the source has other frames than the video needs, or the video shows
/// nothing of it; MediaError.
VideoQuality judgeVideo(const std::filesystem::path& video, const std::optional<Source>& source,
                        const std::function<void(int)>& progress);

}  // namespace orbitwalk::tool
