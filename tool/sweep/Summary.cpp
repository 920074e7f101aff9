#include "sweep/Summary.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "files/TextFile.h"
#include "sweep/Checksum.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

namespace fs = std::filesystem;

/// A hundred times what a capture writes.
constexpr std::size_t kLongestSummary = 1 << 20;

[[gnu::format(printf, 1, 2)]] std::string line(const char* format, ...) {
    char text[512];
    va_list values;
    va_start(values, format);
    std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    return text;
}

void requireSame(const fs::path& file, const std::string& sum, const std::string& expected) {
    if (sum != expected)
        throw ToolError(file.string() + " is not the one that " + kSweepSummaryName +
                        " beside it was written with: the files are of different captures");
}

}  // namespace

std::string_view toolVersion() {
    return ORBITWALK_VERSION;
}

std::optional<FileIdentity> identityOf(const fs::path& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error))
        return std::nullopt;
    return FileIdentity{fs::absolute(file, error).lexically_normal(),
                        static_cast<std::int64_t>(fs::file_size(file, error)), sha256OfFile(file)};
}

SweepChecksums checksumsOf(const SweepFiles& files) {
    return {sha256OfFile(files.video), sha256OfFile(files.record), sha256OfFile(files.path)};
}

Trajectory pathExtent(std::span<const Trajectory> path) {
    if (path.empty())
        return {};
    const auto spread = [&](double Trajectory::*axis) {
        const auto [least, most] = std::ranges::minmax(path, {}, axis);
        return most.*axis - least.*axis;
    };
    return {spread(&Trajectory::x), spread(&Trajectory::y), spread(&Trajectory::a)};
}

void fillFigures(Summary& summary, const __kelOBWKDXMetaData& record,
                 std::span<const SweepRow> path) {
    std::vector<Trajectory> positions;
    for (const SweepRow& row : path)
        positions.push_back(row.position);
    summary.width = record.width;
    summary.height = record.height;
    summary.frames = record.numFrames;
    summary.first = record.startIndex;
    summary.last = std::min(record.endIndex, record.numFrames - 1);
    summary.skipped = static_cast<int>(
        std::ranges::count_if(path, [](const SweepRow& row) { return row.flag != 1; }));
    summary.rendered = renderedFrames(record);
    summary.direction =
        record.captureDirection > OBW_DIRECTION_RIGHT2LEFT    ? OBW_DIRECTION_TOP2BOTTOM
        : record.captureDirection == OBW_DIRECTION_RIGHT2LEFT ? OBW_DIRECTION_RIGHT2LEFT
                                                              : OBW_DIRECTION_LEFT2RIGHT;
    summary.extent = pathExtent(positions);
    summary.cropWidthShare = static_cast<double>(record.cropParam[2]) / record.width;
    summary.cropHeightShare = static_cast<double>(record.cropParam[3]) / record.height;
    summary.smoothing = smoothingOf(record);
    summary.repeatedMotions = static_cast<int>(std::ranges::count(path, true, &SweepRow::repeated));
}

std::string toText(const Summary& summary) {
    const StageSeconds& s = summary.seconds;
    return line("frames            %d of %dx%d, %d to %d rendered, %d skipped%s\n", summary.frames,
                summary.width, summary.height, summary.first, summary.last, summary.skipped,
                summary.truncated ? " (the video has more)" : "") +
           line("frame rate        %.2f frames/s, the sweep's %d\n", summary.videoRate,
                kSweepRate) +
           line("direction         %s\n", keyOf(summary.direction)) +
           line("path extent       %.1f x %.1f px\n", summary.extent.x, summary.extent.y) +
           line("crop kept         %.1f %% of the width, %.1f %% of the height\n",
                100 * summary.cropWidthShare, 100 * summary.cropHeightShare) +
           line("correction        %s\n", wordsOf(summary.smoothing)) +
           line("repeated motions  %d\n", summary.repeatedMotions) +
           (summary.steadiness ? "verdict           " + verdictOn(*summary.steadiness).text + "\n"
                               : "") +
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

std::optional<Summary> openSummary(const SweepFiles& files) {
    std::error_code cannotTell;
    if (!fs::exists(files.summary, cannotTell) && !cannotTell)
        return std::nullopt;
    const std::string text = readTextFile(files.summary, kLongestSummary);
    Summary summary;
    try {
        summary = parseSummary(text);
    } catch (const ToolError& error) {
        throw ToolError(files.summary.string() + ": no summary of a capture: " + error.what());
    }
    if (summary.schema == 0)
        return summary;
    const SweepChecksums sums = checksumsOf(files);
    requireSame(files.video, sums.video, summary.checksums.video);
    requireSame(files.record, sums.record, summary.checksums.record);
    requireSame(files.path, sums.path, summary.checksums.path);
    return summary;
}

}  // namespace orbitwalk::tool
