#pragma once

#include <filesystem>
#include <opencv2/core/types.hpp>
#include <optional>
#include <string>
#include <vector>

#include "render/SteadyVideo.h"

/// What a rendering came to.
namespace orbitwalk::tool {

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
    std::vector<std::string> warnings;
};

/// A line a file.
std::string toText(const RenderSummary& summary);

}  // namespace orbitwalk::tool
