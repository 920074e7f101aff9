#include "capture/Notes.h"

#include <cmath>
#include <cstdio>

namespace orbitwalk::tool {

namespace {

/// Cameras that call their rate 30 come as near as this.
constexpr double kRateTolerance = 0.3;

std::string rateText(double rate) {
    char text[32];
    std::snprintf(text, sizeof text, "%.4g", rate);
    return text;
}

}  // namespace

std::vector<std::string> notesOn(const Summary& summary) {
    std::vector<std::string> notes;
    if (summary.truncated)
        notes.push_back("stopped taking frames at " + std::to_string(summary.frames) +
                        ", the most that a sweep can hold; the video goes on");
    if (std::abs(summary.videoRate - kSweepRate) > kRateTolerance)
        notes.push_back("the video has " + rateText(summary.videoRate) +
                        " frames/s; the sweep plays them at " + std::to_string(kSweepRate));
    if (summary.unheededRotation != 0)
        notes.push_back("the video is marked to be shown turned by " +
                        std::to_string(summary.unheededRotation) + " degrees; give --orientation");
    if (summary.trimmed)
        notes.push_back("the video's last column or row is left out: the sweep is " +
                        std::to_string(summary.width) + "x" + std::to_string(summary.height));
    return notes;
}

std::vector<std::string> warningsOf(const Summary& summary) {
    std::vector<std::string> warnings;
    if (summary.rendered == 0)
        warnings.push_back("every frame of the range is skipped: the record renders no frame");
    if (auto warning = repeatedMotionWarning(summary.repeatedMotions, summary.frames))
        warnings.push_back(*std::move(warning));
    return warnings;
}

}  // namespace orbitwalk::tool
