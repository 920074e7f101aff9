#pragma once

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "capture/SweepPath.h"
#include "sweep/Smoothing.h"

namespace orbitwalk::tool {

/// Wall-clock seconds that a capture spent in each stage.
struct StageSeconds {
    double decode = 0;
    double measure = 0;
    double feed = 0;
    double waitForEncoder = 0;  ///< Before a frame was fed: the encoder is behind.
    double finishVideo = 0;     ///< From stop until the MP4 was closed.
    double smooth = 0;
    double renderMatrices = 0;
    double cleanUp = 0;
    double total = 0;  ///< From opening the video until all but the summary was written.
};

/// A stage under its key in the summary's JSON.
struct Stage {
    const char* key;
    double StageSeconds::*seconds;
};

/// In the order that a capture goes through them, the total last.
inline constexpr Stage kStages[] = {{"decode", &StageSeconds::decode},
                                    {"measure", &StageSeconds::measure},
                                    {"feed", &StageSeconds::feed},
                                    {"waitForEncoder", &StageSeconds::waitForEncoder},
                                    {"finishVideo", &StageSeconds::finishVideo},
                                    {"smooth", &StageSeconds::smooth},
                                    {"renderMatrices", &StageSeconds::renderMatrices},
                                    {"cleanUp", &StageSeconds::cleanUp},
                                    {"total", &StageSeconds::total}};

/// Frames a second of every sweep.mp4: the engine's encoder knows no other.
inline constexpr int kSweepRate = 30;

/// What a capture came to.
struct Summary {
    std::filesystem::path video;
    int width = 0;
    int height = 0;
    int frames = 0;
    double videoRate = kSweepRate;  ///< Frames a second, by the video's word.
    /// By how much the video is marked to be shown turned, clockwise, when no orientation was
    /// given.
    int unheededRotation = 0;
    bool trimmed = false;    ///< The video has an odd last column or row, which the sweep has not.
    bool truncated = false;  ///< The video has more frames than a sweep can hold.
    int first = 0;
    int last = 0;
    int skipped = 0;
    int rendered = 0;  ///< Frames of the range that are not skipped.
    OBWDirection direction = OBW_DIRECTION_LEFT2RIGHT;
    PathExtent extent;
    double cropWidthShare = 0;  ///< Of the frame's width, what every rendered frame shows.
    double cropHeightShare = 0;
    Smoothing smoothing = Smoothing::Smoothed;
    int repeatedMotions = 0;
    StageSeconds seconds;
    std::filesystem::path sweepVideo;
    std::filesystem::path sweepRecord;
    std::filesystem::path sweepPath;
    std::filesystem::path sweepSummary;
};

/// A line that warns of too many repeated motions, more than a tenth of the frames.
std::optional<std::string> repeatedMotionWarning(int repeatedMotions, int frames);

std::string toText(const Summary& summary);
nlohmann::ordered_json toJson(const Summary& summary);
/// What sweep.json holds. A file name may have bytes that are not UTF-8; JSON cannot.
std::string toJsonText(const Summary& summary);

}  // namespace orbitwalk::tool
