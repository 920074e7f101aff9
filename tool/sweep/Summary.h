#pragma once

#include <cstdint>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "orbitwalk/Engine.h"
#include "orbitwalk/Geometry.h"
#include "sweep/RecordFacts.h"
#include "sweep/SweepFiles.h"
#include "sweep/Tables.h"
#include "sweep/Verdict.h"

/// sweep.json: what a capture came to, and which files belong to it.
namespace orbitwalk::tool {

/// Of the tool that runs.
std::string_view toolVersion();

/// Wall-clock seconds that a capture spent in each stage.
struct StageSeconds {
    double decode = 0;  ///< On a thread of its own, beside the following three.
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

/// Of what a file held; see sha256 for the digits.
struct FileIdentity {
    std::filesystem::path path;  ///< Absolute, links not followed.
    std::int64_t bytes = 0;
    std::string sha256;
};

/// Reads the whole file. @return nothing for what can be read only once, such as a pipe.
/// @throws ToolError with the file's name when it cannot be read.
std::optional<FileIdentity> identityOf(const std::filesystem::path& file);

/// Of the files that a capture writes, see sha256.
struct SweepChecksums {
    std::string video;
    std::string record;
    std::string path;
};

/// Reads the files of a directory. @throws ToolError that names the one that cannot be read.
SweepChecksums checksumsOf(const SweepFiles& files);

/// Layout of the sweep.json that this tool writes. None: it was written before there were numbers,
/// and before it named the files that belong to it.
inline constexpr int kSummarySchema = 1;

/// What a capture came to. A capture fills in all of it; of what was read, the steadiness and the
/// four paths of the outputs are left empty.
struct Summary {
    int schema = kSummarySchema;  ///< 0 when none was given.
    std::string toolVersion{tool::toolVersion()};
    /// The video's frames that belong in the sweep were all there: it neither ended early nor was
    /// damaged.
    bool complete = true;
    std::filesystem::path video;  ///< As given to capture.
    /// The same file, to be found again; see identityOf. None where its first frame is not the
    /// sweep's.
    std::optional<FileIdentity> source;
    SweepChecksums checksums;  ///< Of what was written beside this summary.
    int width = 0;
    int height = 0;
    int frames = 0;
    double videoRate = kSweepRate;  ///< Frames a second, by the video's word.
    bool truncated = false;         ///< The video has more frames than a sweep can hold.
    int first = 0;
    int last = 0;
    int skipped = 0;
    int rendered = 0;  ///< Frames of the range that are not skipped.
    /// As in the record, or from top to bottom for any vertical sweep, which a record has no word
    /// for.
    OBWDirection direction = OBW_DIRECTION_LEFT2RIGHT;
    Trajectory extent;          ///< See pathExtent; the angle is not kept.
    double cropWidthShare = 0;  ///< Of the frame's width, what every rendered frame shows.
    double cropHeightShare = 0;
    Smoothing smoothing = Smoothing::Smoothed;
    int repeatedMotions = 0;
    std::optional<Steadiness> steadiness;  ///< Told, and not read back.
    StageSeconds seconds;
    std::filesystem::path sweepVideo;
    std::filesystem::path sweepRecord;
    std::filesystem::path sweepPath;
    std::filesystem::path sweepSummary;
};

/// Between the leftmost and the rightmost point, the highest and the lowest, and the angles.
Trajectory pathExtent(std::span<const Trajectory> path);

/// Fills in what the record and the path that led to it tell of a sweep: its size, frames, range
/// and direction, the crop, the smoothing and the repeated motions.
/// @param path  one row a frame of the record.
void fillFigures(Summary& summary, const __kelOBWKDXMetaData& record,
                 std::span<const SweepRow> path);

std::string toText(const Summary& summary);
nlohmann::ordered_json toJson(const Summary& summary);
/// What sweep.json holds. A file name may have bytes that are not UTF-8; JSON cannot.
std::string toJsonText(const Summary& summary);

/// Reads the text of a sweep.json. @throws ToolError that says what is missing or out of range.
Summary parseSummary(std::string_view text);

/// Reads a sweep.json, and where it names them, compares the files beside it: those of a capture
/// that was killed while it replaced another, or that somebody copied over, do not belong together.
/// @return nothing where there is none, as beside sweeps from before it was written.
/// @throws ToolError in one line that names the file that cannot be read, is no summary or does not
/// belong to it.
std::optional<Summary> openSummary(const SweepFiles& files);

}  // namespace orbitwalk::tool
