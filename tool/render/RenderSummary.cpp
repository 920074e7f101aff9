#include "render/Rendering.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "sweep/Summary.h"
#include "terminal/Print.h"

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
    return shown(rendered.file.path) + text;
}

std::string textOf(const char* kind, const RenderedFile& file) {
    char text[100];
    std::snprintf(text, sizeof text, ": %s of %dx%d, %.1f s\n", kind, file.size.width,
                  file.size.height, file.seconds);
    return shown(file.path) + text;
}

}  // namespace

std::string toText(const RenderSummary& summary) {
    return (summary.video ? textOf(*summary.video) : "") +
           (summary.strip ? textOf("strip", *summary.strip) : "") +
           (summary.panorama ? textOf("panorama", *summary.panorama) : "") +
           (summary.steadiness ? verdictOn(*summary.steadiness).text + "\n" : "");
}

std::string toJsonText(const RenderSummary& summary) {
    nlohmann::ordered_json json{{"tool", "orbitwalk render"}, {"toolVersion", toolVersion()}};
    nlohmann::ordered_json outputs, sizes, seconds;
    const auto add = [&](const char* kind, const RenderedFile& file) {
        outputs[kind] = file.path.string();
        sizes[kind] = {{"width", file.size.width}, {"height", file.size.height}};
        seconds[kind] = file.seconds;
    };
    if (summary.video)
        add("video", summary.video->file);
    if (summary.strip)
        add("strip", *summary.strip);
    if (summary.panorama)
        add("panorama", *summary.panorama);
    seconds["total"] = summary.seconds;
    json["outputs"] = outputs;
    json["sizes"] = sizes;
    const SteadyVideo video = summary.video ? summary.video->video : SteadyVideo{};
    json["frames"] = video.frames();
    json["borderFrames"] = {{"left", video.leftBorderFrames}, {"right", video.rightBorderFrames}};
    const auto& [x, y, width, height] = summary.crop;
    json["crop"] = {{"x", x}, {"y", y}, {"width", width}, {"height", height}};
    json["rotationDegrees"] = summary.rotation;
    json["verdict"] =
        summary.steadiness ? toJson(verdictOn(*summary.steadiness)) : nlohmann::ordered_json();
    json["warnings"] = summary.warnings;
    json["seconds"] = seconds;
    // A file name may have bytes that are not UTF-8; JSON cannot.
    return jsonText(json);
}

}  // namespace orbitwalk::tool
