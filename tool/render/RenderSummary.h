#pragma once

#include <filesystem>
#include <opencv2/core/types.hpp>
#include <optional>
#include <string>
#include <vector>

#include "render/SteadyVideo.h"
#include "sweep/Verdict.h"

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
    CropRectangle crop;                    ///< Of the frame, what is shown.
    int rotation = 0;                      ///< See displayRotation.
    std::optional<Steadiness> steadiness;  ///< None where there is no measured path.
    std::vector<std::string> warnings;
    double seconds = 0;  ///< In all.
};

/// A line a file, and the verdict.
std::string toText(const RenderSummary& summary);
std::string toJsonText(const RenderSummary& summary);

}  // namespace orbitwalk::tool
