#include "capture/Capture.h"

#include <chrono>
#include <string>

#include "capture/EngineTempDirectory.h"
#include "capture/FrameFeed.h"
#include "capture/Session.h"
#include "capture/StageTimer.h"
#include "files/OutputFiles.h"
#include "sweep/Checksum.h"
#include "sweep/SweepCsv.h"
#include "sweep/SweepFiles.h"
#include "terminal/ProgressBar.h"
#include "terminal/SignalGuard.h"
#include "terminal/ToolError.h"

namespace fs = std::filesystem;

namespace orbitwalk::tool {
namespace {

void refuseToReplaceTheSource(const CaptureOptions& options) {
    for (const char* name : kSweepNames) {
        std::error_code noSuchFile;
        if (fs::equivalent(options.video, options.directory / name, noSuchFile))
            throw ToolError(options.video.string() +
                            " is the video to capture and would be replaced");
    }
}

void requireFrame(const char* option, int frame, int frames) {
    if (frame < 0 || frame >= frames)
        throw ToolError(std::string(option) + " " + std::to_string(frame) +
                        ": the sweep has the frames 0 to " + std::to_string(frames - 1));
}

SweepSelection select(const CaptureOptions& options, const std::vector<Trajectory>& path) {
    const int frames = static_cast<int>(path.size());
    SweepSelection selection{.first = options.first.value_or(0),
                             .last = options.last.value_or(frames - 1),
                             .flags = std::vector<std::int32_t>(path.size(), 1),
                             .direction = OBW_DIRECTION_LEFT2RIGHT};
    requireFrame("--first", selection.first, frames);
    requireFrame("--last", selection.last, frames);
    if (selection.first > selection.last)
        throw ToolError("--first " + std::to_string(selection.first) +
                        " is after the last frame, " + std::to_string(selection.last));
    for (const int frame : options.skip) {
        requireFrame("--skip", frame, frames);
        selection.flags[frame] = 0;
    }
    selection.direction = options.direction.value_or(
        sweepDirection(path[selection.first], path[selection.last], options.orientation.value_or(0),
                       options.frontCameraFlipped));
    return selection;
}

std::vector<SweepRow> rowsOf(const std::vector<Trajectory>& path,
                             const std::vector<std::int32_t>& flags,
                             const std::set<int>& repeated) {
    std::vector<SweepRow> rows;
    for (int i = 0; i < std::ssize(path); ++i)
        rows.push_back({path[i], flags[i], repeated.contains(i)});
    return rows;
}

/// What the summary says of the files beside it. @param mp4  complete.
SweepChecksums checksumsOf(std::FILE* mp4, std::span<const char> record, const std::string& csv) {
    return {sha256OfStream(mp4), sha256(record), sha256(csv)};
}

void fillPostProcessing(StageSeconds& seconds, const Session& session) {
    const auto until = [&](int percent) { return session.secondsUntil(percent).value_or(0); };
    seconds.finishVideo = until(15);
    seconds.smooth = until(45) - until(30);
    seconds.renderMatrices = until(60) - until(45);
    seconds.cleanUp = until(100) - until(60);
}

void fillFromRecord(Summary& summary, const __kelOBWKDXMetaData& record) {
    summary.width = record.width;
    summary.height = record.height;
    summary.cropWidthShare = static_cast<double>(record.cropParam[2]) / record.width;
    summary.cropHeightShare = static_cast<double>(record.cropParam[3]) / record.height;
    summary.rendered = renderedFrames(record);
    summary.smoothing = smoothingOf(record);
}

void fillFromVideo(Summary& summary, const CaptureOptions& options,
                   const media::VideoReader& video) {
    summary.video = options.video;
    summary.source = identityOf(options.video);
    const media::FrameRate rate = video.frameRate();
    summary.videoRate = static_cast<double>(rate.numerator) / rate.denominator;
    summary.unheededRotation = options.orientation ? 0 : video.rotationDegrees();
    summary.trimmed = video.isTrimmed();
}

Feed feedAll(const CaptureOptions& options, media::VideoReader& video, Session& session,
             const SignalGuard& signals, StageSeconds& seconds) {
    Feed feed = feedVideo(video, session, options.realtime, signals, seconds);
    if (feed.path.empty())
        throw ToolError(options.video.string() + " holds no frame");
    return feed;
}

/// Runs the session to its end and writes what it gave.
Summary runSession(const CaptureOptions& options, media::VideoReader& video, OutputFiles& outputs,
                   const SignalGuard& signals) {
    Summary summary;
    std::FILE* const mp4 = outputs.create(options.directory / kSweepVideoName);
    Session session({.width = video.width(),
                     .height = video.height(),
                     .orientation = options.orientation.value_or(0),
                     .frontCameraFlipped = options.frontCameraFlipped,
                     .mp4Name = options.directory / kSweepVideoName},
                    mp4);
    const Feed feed = feedAll(options, video, session, signals, summary.seconds);
    const SweepSelection selection = select(options, feed.path);
    ProgressBar bar("finishing", 100);
    const auto& record =
        session.finish(feed.path, selection, [&](int percent) { bar.update(percent); });
    const std::set<int> repeated = session.repeatedFrames();
    const std::span recordBytes(reinterpret_cast<const char*>(&record), sizeof record);
    const std::string csv = sweepCsv(rowsOf(feed.path, selection.flags, repeated));
    outputs.write(options.directory / kSweepRecordName, recordBytes);
    outputs.write(options.directory / kSweepPathName, csv);
    summary.checksums = checksumsOf(mp4, recordBytes, csv);

    fillFromVideo(summary, options, video);
    summary.frames = static_cast<int>(feed.path.size());
    summary.truncated = feed.truncated;
    summary.first = selection.first;
    summary.last = selection.last;
    summary.skipped = static_cast<int>(options.skip.size());
    summary.direction = selection.direction;
    summary.extent = pathExtent(feed.path);
    summary.repeatedMotions = static_cast<int>(repeated.size());
    fillFromRecord(summary, record);
    const SweepFiles files(options.directory);
    summary.sweepVideo = files.video;
    summary.sweepRecord = files.record;
    summary.sweepPath = files.path;
    summary.sweepSummary = files.summary;
    fillPostProcessing(summary.seconds, session);
    return summary;
}

}  // namespace

Summary captureSweep(const CaptureOptions& options) {
    const SignalGuard signals;
    OutputFiles outputs(true);
    outputs.makeDirectory(options.directory);
    double seconds = 0;
    Summary summary = timed(seconds, [&] {
        media::VideoReader video(options.video);
        refuseToReplaceTheSource(options);
        const EngineTempDirectory temporary;
        return runSession(options, video, outputs, signals);
    });
    summary.seconds.total = seconds;
    outputs.write(options.directory / kSweepSummaryName, toJsonText(summary));
    signals.check();
    outputs.commit();
    return summary;
}

}  // namespace orbitwalk::tool
