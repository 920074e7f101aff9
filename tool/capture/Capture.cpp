#include "capture/Capture.h"

#include <chrono>
#include <future>
#include <memory>
#include <span>
#include <string>

#include "capture/EngineTempDirectory.h"
#include "capture/FrameFeed.h"
#include "capture/Session.h"
#include "files/OutputFiles.h"
#include "files/OwnFiles.h"
#include "sweep/Checksum.h"
#include "sweep/Steadiness.h"
#include "sweep/SweepFiles.h"
#include "sweep/Tables.h"
#include "terminal/FreedMemory.h"
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
            throw UsageError(options.video.string() +
                             " is the video to capture and would be replaced");
    }
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

VideoFacts factsOf(const CaptureOptions& options, const media::VideoReader& video) {
    return {.variableRate = video.variableRate(),
            .unheededRotation = options.orientation ? 0 : video.rotationDegrees(),
            .trimmed = video.isTrimmed(),
            .pixelAspect = video.pixelAspect(),
            .audio = video.hasAudio(),
            .wideColour = video.isWideColour(),
            .completeness = video.completeness()};
}

/// Reads the whole file beside the capture: it is large, and the end would wait for it.
/// @return nothing where the sweep's first frame is not the file's: who measures the motion again
/// counts from there.
std::future<std::optional<FileIdentity>> sourceOf(const CaptureOptions& options) {
    return std::async(std::launch::async, [&options]() -> std::optional<FileIdentity> {
        if (options.start.value_or(std::chrono::microseconds(0)).count() != 0)
            return std::nullopt;
        return identityOf(options.video);
    });
}

/// @param video  read to its end.
void fillFromVideo(CaptureResult& result, const CaptureOptions& options,
                   const media::VideoReader& video) {
    Summary& summary = result.summary;
    result.video = factsOf(options, video);
    summary.video = options.video;
    const media::FrameRate rate = video.frameRate();
    summary.videoRate = static_cast<double>(rate.numerator) / rate.denominator;
    summary.complete = result.video.completeness.isComplete();
}

/// @param shown  the orientation in which players show the video, as far as it is known.
bool wentVertically(const Summary& summary, const std::vector<Trajectory>& path, int shown) {
    const auto range =
        std::span(path).subspan(static_cast<std::size_t>(summary.first),
                                static_cast<std::size_t>(summary.last - summary.first + 1));
    return isVertical(range, shown, {summary.width, summary.height});
}

/// @param measurer  of the refinement, if there is to be one.
Feed feedAll(const CaptureOptions& options, std::unique_ptr<FrameSource> video, Session& session,
             StageSeconds& seconds, std::optional<FrameMeasurer>& measurer) {
    Feed feed = feedVideo(std::move(video), session, options.realtime, seconds,
                          measurer ? BesideEngine(std::ref(*measurer)) : BesideEngine());
    if (feed.path.empty())
        throw options.start || options.duration
            ? UsageError("--start and --duration leave no frame of " + options.video.string())
            : ToolError(options.video.string() + " holds no frame");
    return feed;
}

media::VideoReader openVideo(const CaptureOptions& options) {
    return media::VideoReader(options.video,
                              {.start = options.start.value_or(std::chrono::microseconds(0)),
                               .duration = options.duration,
                               .interrupted = [] { return SignalGuard::received() != 0; }});
}

struct SessionResult {
    CaptureResult capture;
    RecordReader record;
    std::optional<MeasuredMotions> motions;  ///< For the refinement.
};

RecordReader reopened(std::span<const char> record) {
    auto opened = RecordReader::open(std::as_bytes(record));
    if (const auto* refusal = std::get_if<RecordRefusal>(&opened))
        throw ToolError("the engine wrote no motion record: " + refusal->text);
    return std::get<RecordReader>(std::move(opened));
}

/// Runs the session to its end and writes what it gave.
SessionResult runSession(const CaptureOptions& options, media::VideoReader& video,
                         OutputFiles& outputs) {
    CaptureResult result;
    Summary& summary = result.summary;
    const int orientation = options.orientation.value_or(0);
    const FrameSize size{video.width(), video.height()};
    std::FILE* const mp4 = outputs.create(options.directory / kSweepVideoName,
                                          // Videos of earlier versions do not say who wrote them.
                                          isOwnFile(options.directory / kSweepRecordName));
    // Decoding begins while the engine makes itself ready.
    auto frames = std::make_unique<FrameSource>(video);
    Session session({.width = size.width,
                     .height = size.height,
                     .orientation = orientation,
                     .frontCameraFlipped = options.frontCameraFlipped,
                     .mp4Name = options.directory / kSweepVideoName},
                    mp4);
    std::future<std::optional<FileIdentity>> source = sourceOf(options);
    std::optional<FrameMeasurer> measurer;
    if (options.refine) {
        keepFreedMemory();
        measurer.emplace(size);
    }
    const Feed feed = feedAll(options, std::move(frames), session, summary.seconds, measurer);
    const SweepSelection selection =
        selectRange(options.range, feed.path, orientation, options.frontCameraFlipped);
    ProgressBar bar("Finishing", 100);
    const auto& record =
        session.finish(feed.path, selection, [&](int percent) { bar.update(percent); });
    const std::set<int> repeated = session.repeatedFrames();
    const std::span recordBytes(reinterpret_cast<const char*>(&record), sizeof record);
    const std::vector<SweepRow> rows = rowsOf(feed.path, selection.flags, repeated);
    const std::string csv = sweepCsv(rows);
    outputs.write(options.directory / kSweepRecordName, recordBytes);
    outputs.write(options.directory / kSweepPathName, csv);
    summary.checksums = checksumsOf(mp4, recordBytes, csv);

    summary.source = source.get();
    fillFromVideo(result, options, video);
    fillFigures(summary, record, rows);
    const int shown = orientationOfRotation(result.video.unheededRotation).value_or(0);
    if (wentVertically(summary, feed.path, options.orientation.value_or(shown)))
        summary.direction = OBW_DIRECTION_TOP2BOTTOM;
    summary.truncated = feed.truncated;
    RecordReader reader = reopened(recordBytes);
    summary.steadiness = steadinessOf(rows, reader);
    const SweepFiles files(options.directory);
    summary.sweepVideo = files.video;
    summary.sweepRecord = files.record;
    summary.sweepPath = files.path;
    summary.sweepSummary = files.summary;
    fillPostProcessing(summary.seconds, session);
    std::optional<MeasuredMotions> motions;
    if (measurer)
        motions = std::move(*measurer).motions(options.video.filename().string());
    return {std::move(result), std::move(reader), std::move(motions)};
}

}  // namespace

CaptureResult captureSweep(const CaptureOptions& options) {
    if (options.refine)
        requireUsable(*options.refine);
    const SignalGuard signals;
    const Stopwatch total;
    OutputFiles outputs(options.replaceForeign);
    outputs.makeDirectory(options.directory);
    SessionResult session = [&] {
        try {
            media::VideoReader video = openVideo(options);
            refuseToReplaceTheSource(options);
            const EngineTempDirectory temporary;
            return runSession(options, video, outputs);
        } catch (const media::MediaError&) {
            SignalGuard::check();
            throw;
        }
    }();
    CaptureResult& result = session.capture;
    result.summary.seconds.total = total.seconds();
    outputs.write(options.directory / kSweepSummaryName, toJsonText(result.summary));
    if (session.motions)
        result.refined = writeRefinement(outputs, SweepFiles(options.directory), *session.motions,
                                         session.record, result.summary.checksums, *options.refine);
    SignalGuard::check();
    outputs.commit();
    return std::move(result);
}

}  // namespace orbitwalk::tool
