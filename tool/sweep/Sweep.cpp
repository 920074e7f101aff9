#include "sweep/Sweep.h"

#include <cerrno>
#include <cstring>
#include <span>
#include <string>

#include "files/TextFile.h"
#include "sweep/SmoothedPath.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;

std::string textOf(cv::Size size) {
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

std::string textOf(const CropRectangle& crop) {
    return textOf(cv::Size(crop.width, crop.height)) + " at " + std::to_string(crop.x) + "," +
           std::to_string(crop.y);
}

void requireRecordOfSummary(const Summary& summary, const RecordReader& record) {
    const cv::Size said(summary.width, summary.height), recorded(record.width(), record.height());
    if (said != recorded || summary.frames != record.frameCount())
        throw ToolError("it says " + std::to_string(summary.frames) + " frames of " + textOf(said) +
                        ", the record " + std::to_string(record.frameCount()) + " frames of " +
                        textOf(recorded));
}

/// @param check  throws ToolError with what differs.
template <typename Check>
void requireOfThisSweep(const fs::path& file, Check check) {
    try {
        check();
    } catch (const ToolError& difference) {
        throw ToolError(file.string() + " is of another sweep: " + difference.what());
    }
}

/// Replaces the engine's record by the one that was planned beside it.
void takeRefinement(Sweep& sweep) {
    const SweepFiles& files = sweep.files;
    std::error_code cannotTell;
    if (!fs::exists(files.refinedSummary, cannotTell) && !cannotTell)
        throw ToolError(files.refinedSummary.string() +
                        ": there is no refinement; run orbitwalk refine");
    RefinedSummary summary = openRefinedSummary(files);
    RecordReader record = readRecordFile(files.refinedRecord);
    if (record.width() != sweep.record.width() || record.height() != sweep.record.height() ||
        record.frameCount() != sweep.record.frameCount())
        throw ToolError(files.refinedRecord.string() + " is of another sweep: it says " +
                        std::to_string(record.frameCount()) + " frames of " +
                        textOf(cv::Size(record.width(), record.height())));
    sweep.refinement = Refinement{
        sweep.record,
        readMotionCsv(files.refinedPath, {record.width(), record.height()}, record.frameCount()),
        std::move(summary)};
    sweep.record = std::move(record);
}

Sweep readEngineSweep(const fs::path& directory) {
    const SweepFiles files(directory);
    Sweep sweep{files, readRecordFile(files.record), {}, openSummary(files), {}};
    if (sweep.summary)
        requireOfThisSweep(files.summary,
                           [&] { requireRecordOfSummary(*sweep.summary, sweep.record); });
    std::error_code cannotTell;
    if (!fs::exists(files.path, cannotTell) && !cannotTell)
        return sweep;
    sweep.path = readSweepCsv(files.path, sweep.record.frameCount());
    requireOfThisSweep(files.path, [&] { requirePathOfRecord(sweep.path, sweep.record); });
    return sweep;
}

}  // namespace

Sweep readSweep(const fs::path& directory, RecordBy by) {
    Sweep sweep = readEngineSweep(directory);
    if (by == RecordBy::Refinement)
        takeRefinement(sweep);
    return sweep;
}

Sweep openSweep(const fs::path& directory, RecordBy by) {
    const SweepFiles files(directory);
    if (renderedFrames(readRecordFile(files.record).raw()) == 0)
        throw ToolError(files.record.string() + ": the record renders no frame");
    return readSweep(directory, by);
}

std::optional<bool> isVertical(const std::optional<Summary>& summary) {
    if (!summary || summary->schema == 0)
        return std::nullopt;
    return summary->direction == OBW_DIRECTION_TOP2BOTTOM;
}

const std::vector<SweepRow>& requirePath(const Sweep& sweep) {
    if (sweep.path.empty())
        throw ToolError(sweep.files.path.string() + ": " + std::strerror(ENOENT));
    return sweep.path;
}

RecordReader readRecordFile(const fs::path& file) {
    const std::string bytes = readFileUpTo(file, OBW_METADATA_SIZE + 1);
    auto opened = RecordReader::open(std::as_bytes(std::span(bytes)));
    if (const auto* refusal = std::get_if<RecordRefusal>(&opened))
        throw ToolError(file.string() + ": not a motion record: " + refusal->text);
    return std::get<RecordReader>(std::move(opened));
}

void requirePathOfRecord(std::span<const SweepRow> path, const RecordReader& record) {
    const auto& raw = record.raw();
    for (int i = 0; i < record.frameCount(); ++i)
        if (path[i].flag != raw.renderFlag[i])
            throw ToolError("the flag of frame " + std::to_string(i) + " is " +
                            std::to_string(path[i].flag) + ", the record says " +
                            std::to_string(raw.renderFlag[i]));
    const CropRectangle crop =
        smoothedPath(path, raw.startIndex, raw.endIndex, record.width(), record.height()).crop;
    if (crop != record.crop())
        throw ToolError("its path leads to the crop " + textOf(crop) + ", the record has " +
                        textOf(record.crop()));
}

void requireSize(const fs::path& video, cv::Size size, cv::Size recorded) {
    if (size != recorded)
        throw ToolError(video.string() + ": the video is " + textOf(size) + ", its record says " +
                        textOf(recorded));
}

void requireFrameCount(const fs::path& video, int frames, int recorded) {
    if (frames != recorded)
        throw ToolError(video.string() + ": the video has " + std::to_string(frames) +
                        " frames, its record says " + std::to_string(recorded));
}

}  // namespace orbitwalk::tool
