#include "render/RenderSummary.h"

#include <cstdio>

namespace orbitwalk::tool {

namespace {

std::string textOf(const RenderedVideo& rendered) {
    const SteadyVideo& video = rendered.video;
    char text[160];
    std::snprintf(text, sizeof text,
                  ": %d frames of %dx%d (%d before the sweep, %d of it, %d after), %.1f s, "
                  "%.1f frames/s\n",
                  video.frames(), video.size.width, video.size.height, video.leftBorderFrames,
                  video.sweepFrames, video.rightBorderFrames, rendered.file.seconds,
                  video.frames() / rendered.file.seconds);
    return rendered.file.path.string() + text;
}

std::string textOf(const char* kind, const RenderedFile& file) {
    char text[100];
    std::snprintf(text, sizeof text, ": %s of %dx%d, %.1f s\n", kind, file.size.width,
                  file.size.height, file.seconds);
    return file.path.string() + text;
}

}  // namespace

std::string toText(const RenderSummary& summary) {
    return (summary.video ? textOf(*summary.video) : "") +
           (summary.strip ? textOf("strip", *summary.strip) : "") +
           (summary.panorama ? textOf("panorama", *summary.panorama) : "");
}

}  // namespace orbitwalk::tool
