#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <opencv2/core/types.hpp>
#include <optional>
#include <string>
#include <vector>

#include "evaluate/Comparison.h"
#include "evaluate/ResidualMotion.h"
#include "evaluate/SweepFacts.h"
#include "sweep/Verdict.h"

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

/// What to evaluate; empty paths are not given.
struct EvaluateOptions {
    std::filesystem::path directory;
    std::filesystem::path truth;
    std::filesystem::path video;
    std::filesystem::path against;
    bool refined = false;  ///< The record of the refinement beside the engine's.
};

/// What a record comes to.
struct RecordEvaluation {
    SweepFacts facts;
    std::optional<Verdict> verdict;  ///< None where there is no measured path.
};

/// What was asked for, in figures.
struct Evaluation {
    std::optional<RecordEvaluation> sweep;
    std::optional<RecordEvaluation> refined;
    std::optional<bool> vertical;  ///< See isVertical of a sweep.
    std::optional<PathError> path;
    std::optional<VideoQuality> video;
    /// Of the video where it is compared, else of the refined record, else of the engine's. None
    /// for a video that is compared with nothing, and for a record without a measured path.
    std::optional<Verdict> verdict;
    std::string judgedBy;               ///< Whose word the verdict is.
    std::vector<std::string> warnings;  ///< See warningsOn, of what the verdict is on.
};

/// Shows its progress on the terminal. With a video, decodes it and its source once; twice where
/// the container does not say how many frames it has.
/// @throws UsageError when the options do not go together; ToolError, MediaError.
Evaluation evaluate(const EvaluateOptions& options);

/// @return paragraphs for people, one a part, the verdict last.
std::string toText(const Evaluation& evaluation);

/// One object a part: sweep, refined, path, video, verdict; the verdict of each record is inside.
/// The warnings are strings.
/// Keys name their unit. What could not be measured is null.
nlohmann::ordered_json toJson(const Evaluation& evaluation);

}  // namespace orbitwalk::tool
