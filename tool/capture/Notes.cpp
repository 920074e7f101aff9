#include "capture/Notes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>

#include "capture/SweepRange.h"

namespace orbitwalk::tool {

namespace {

/// Cameras that call their rate 30 come as near as this.
constexpr double kRateTolerance = 0.3;

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, value < 1000 ? "%.4g" : "%.0f", value);
    return text;
}

std::optional<std::string> rateNote(const Summary& summary, const VideoFacts& video) {
    // Where pictures are missing, the timestamps of the others say nothing of the camera.
    if (video.variableRate && summary.complete)
        return "the video's rate varies from " + number(video.variableRate->slowest) + " to " +
               number(video.variableRate->fastest) + " frames/s; the sweep plays all frames at " +
               std::to_string(kSweepRate);
    if (std::abs(summary.videoRate - kSweepRate) > kRateTolerance)
        return "the video has " + number(summary.videoRate) +
               " frames/s; the sweep plays them at " + std::to_string(kSweepRate);
    return std::nullopt;
}

std::string rotationNote(int degrees) {
    const auto orientation = orientationOfRotation(degrees);
    if (!orientation)
        return "the video is marked to be shown upside down, which no --orientation stands for; "
               "the sweep stays as it was recorded";
    return "the video is marked to be shown turned by " + std::to_string(degrees) +
           " degrees; give --orientation " + std::to_string(*orientation) +
           ", which the record holds as " + std::to_string(degrees);
}

std::optional<std::string> incompleteness(const media::Completeness& video) {
    if (video.isComplete())
        return std::nullopt;
    std::string line = "the video ends early or is damaged: " + std::to_string(video.read) +
                       " of " + std::to_string(video.expected) + " frames were read";
    if (video.damaged > 0)
        line += ", " + std::to_string(video.damaged) + " of them damaged";
    return line;
}

}  // namespace

std::vector<std::string> notesOn(const Summary& summary, const VideoFacts& video) {
    std::vector<std::string> notes;
    if (summary.truncated)
        notes.push_back("stopped taking frames at " + std::to_string(summary.frames) +
                        ", the most that a sweep can hold; the video goes on");
    if (auto note = rateNote(summary, video))
        notes.push_back(*std::move(note));
    if (video.unheededRotation != 0)
        notes.push_back(rotationNote(video.unheededRotation));
    if (summary.direction == OBW_DIRECTION_TOP2BOTTOM)
        notes.push_back(
            "the camera went up or down: a vertical sweep is not supported, and the record calls "
            "it one from left to right or back");
    if (video.trimmed)
        notes.push_back("the video's last column or row is left out: the sweep is " +
                        std::to_string(summary.width) + "x" + std::to_string(summary.height));
    if (video.pixelAspect != 1)
        notes.push_back("the video's pixels are not square (" + number(video.pixelAspect) +
                        " times as wide as high); the sweep shows them square");
    if (video.wideColour)
        notes.push_back(
            "the video is HDR or has wide colours (BT.2020); the sweep has them mapped "
            "to those of an ordinary video");
    if (video.audio)
        notes.push_back("the video's sound is left out");
    return notes;
}

std::vector<std::string> warningsOf(const Summary& summary, const VideoFacts& video) {
    std::vector<std::string> warnings;
    if (auto warning = incompleteness(video.completeness))
        warnings.push_back(*std::move(warning));
    if (summary.rendered == 0)
        warnings.push_back("every frame of the range is skipped: the record renders no frame");
    if (summary.steadiness)
        std::ranges::copy(warningsOn(*summary.steadiness), std::back_inserter(warnings));
    return warnings;
}

}  // namespace orbitwalk::tool
