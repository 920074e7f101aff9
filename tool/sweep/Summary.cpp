#include "sweep/Summary.h"

#include <cstdarg>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace orbitwalk::tool {
namespace {

[[gnu::format(printf, 1, 2)]] std::string line(const char* format, ...) {
    char text[512];
    va_list values;
    va_start(values, format);
    std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    return text;
}

const char* directionName(OBWDirection direction) {
    return direction == OBW_DIRECTION_LEFT2RIGHT ? "left2right" : "right2left";
}

}  // namespace

std::optional<std::string> repeatedMotionWarning(int repeatedMotions, int frames) {
    if (repeatedMotions * 10 <= frames)
        return std::nullopt;
    return line(
        "%d of %d frames repeat the last motion because theirs could not be measured: too few "
        "corners to follow (the picture is small, soft or dark, or moves too fast)",
        repeatedMotions, frames);
}

std::string toText(const Summary& summary) {
    const StageSeconds& s = summary.seconds;
    return line("frames            %d of %dx%d, %d to %d rendered, %d skipped%s\n", summary.frames,
                summary.width, summary.height, summary.first, summary.last, summary.skipped,
                summary.truncated ? " (the video has more)" : "") +
           line("frame rate        %.2f frames/s, the sweep's %d\n", summary.videoRate,
                kSweepRate) +
           line("direction         %s\n", directionName(summary.direction)) +
           line("path extent       %.1f x %.1f px\n", summary.extent.x, summary.extent.y) +
           line("crop kept         %.1f %% of the width, %.1f %% of the height\n",
                100 * summary.cropWidthShare, 100 * summary.cropHeightShare) +
           line("correction        %s\n", wordsOf(summary.smoothing)) +
           line("repeated motions  %d\n", summary.repeatedMotions) +
           line(
               "seconds           decode %.2f, measure %.2f, feed %.2f, wait for encoder %.2f,\n"
               "                  finish video %.2f, smooth %.2f, render matrices %.2f, clean up "
               "%.2f, total %.2f\n",
               s.decode, s.measure, s.feed, s.waitForEncoder, s.finishVideo, s.smooth,
               s.renderMatrices, s.cleanUp, s.total) +
           "written           " + summary.sweepVideo.string() + "\n                  " +
           summary.sweepRecord.string() + "\n                  " + summary.sweepPath.string() +
           "\n                  " + summary.sweepSummary.string() + "\n";
}

nlohmann::ordered_json toJson(const Summary& summary) {
    nlohmann::ordered_json seconds;
    for (const Stage& stage : kStages)
        seconds[stage.key] = summary.seconds.*stage.seconds;
    return {{"video", summary.video.string()},
            {"width", summary.width},
            {"height", summary.height},
            {"frames", summary.frames},
            {"frameRate", {{"video", summary.videoRate}, {"sweep", kSweepRate}}},
            {"truncated", summary.truncated},
            {"first", summary.first},
            {"last", summary.last},
            {"skipped", summary.skipped},
            {"rendered", summary.rendered},
            {"direction", directionName(summary.direction)},
            {"pathExtent", {{"x", summary.extent.x}, {"y", summary.extent.y}}},
            {"cropKept", {{"width", summary.cropWidthShare}, {"height", summary.cropHeightShare}}},
            {"smoothing", keyOf(summary.smoothing)},
            {"repeatedMotions", summary.repeatedMotions},
            {"repeatedMotionWarning",
             repeatedMotionWarning(summary.repeatedMotions, summary.frames).has_value()},
            {"seconds", seconds},
            {"outputs",
             {{"video", summary.sweepVideo.string()},
              {"record", summary.sweepRecord.string()},
              {"path", summary.sweepPath.string()},
              {"summary", summary.sweepSummary.string()}}}};
}

std::string toJsonText(const Summary& summary) {
    return toJson(summary).dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

}  // namespace orbitwalk::tool
