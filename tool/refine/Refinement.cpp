#include "refine/Refinement.h"

#include <stdexcept>
#include <string>

#include "files/OutputFiles.h"
#include "media/FramesAhead.h"
#include "media/VideoReader.h"
#include "orbitwalk/refine/MotionEstimator.h"
#include "orbitwalk/refine/RecordWriter.h"
#include "sweep/Checksum.h"
#include "terminal/ProgressBar.h"
#include "terminal/SignalGuard.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;

/// The captured video while it is the file that the sweep was made of, else what the sweep kept of
/// it: the encoder softens, and a frame's motion with it.
fs::path videoToMeasure(const Sweep& sweep) {
    if (sweep.summary && sweep.summary->source) {
        const FileIdentity& source = *sweep.summary->source;
        std::error_code missing;
        const auto bytes = fs::file_size(source.path, missing);
        if (!missing && static_cast<std::int64_t>(bytes) == source.bytes &&
            sha256OfFile(source.path) == source.sha256)
            return source.path;
    }
    return sweep.files.video;
}

MeasuredMotions motionsOf(const Sweep& sweep) {
    const RecordReader& record = sweep.record;
    const Stopwatch watch;
    const fs::path video = videoToMeasure(sweep);
    ProgressBar bar("Measuring", record.frameCount());
    auto motions = measureVideo(video, {record.width(), record.height()}, 0, record.frameCount(),
                                [&](int done) {
                                    bar.update(done);
                                    SignalGuard::check();
                                });
    return {std::move(motions), video.filename().string(), watch.seconds()};
}

/// Of the refinement that is there, which must belong to this sweep.
MeasuredMotions formerMotions(const fs::path& directory) {
    Refinement former = *openSweep(directory, RecordBy::Refinement).refinement;
    return {std::move(former.motions), former.summary.video, 0};
}

template <typename Result, typename Refusal>
Result required(std::variant<Result, Refusal> outcome) {
    if (const auto* refusal = std::get_if<Refusal>(&outcome))
        throw ToolError("the sweep cannot be refined: " + refusal->text);
    return std::get<Result>(std::move(outcome));
}

refine::PathPlan planned(std::span<const refine::FrameMotion> motions, FrameSize size,
                         const refine::PlanOptions& options, const PlanWish& wish) {
    if (wish.keep)
        return required(refine::planPath(motions, size, *wish.keep, options));
    refine::PathPlan still = required(refine::planPath(motions, size, 1, options));
    const double recorded = still.before.shift();
    if (recorded == 0)
        return still;
    return required(refine::planForSteadiness(motions, size, wish.steadiness * recorded, options));
}

RefinedSummary summaryOf(int frames, const refine::PathPlan& plan) {
    RefinedSummary summary;
    summary.size = plan.size;
    summary.frames = frames;
    summary.rendered = static_cast<int>(plan.shown.size());
    summary.crop = plan.crop;
    summary.keep = static_cast<double>(plan.crop.width) / plan.size.width;
    summary.viewKept = plan.viewKept;
    summary.before = plan.before;
    summary.after = plan.after;
    summary.unmeasured = plan.bridged;
    return summary;
}

std::span<const char> charsOf(const std::vector<std::byte>& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

refine::MotionEstimator estimatorFor(FrameSize size) {
    try {
        return refine::MotionEstimator(size);
    } catch (const std::invalid_argument& refusal) {
        throw ToolError(std::string("the sweep cannot be refined: ") + refusal.what());
    }
}

}  // namespace

FrameMeasurer::FrameMeasurer(FrameSize size) : mSize(size), mEstimator(estimatorFor(size)) {}

void FrameMeasurer::operator()(std::span<const std::uint8_t> frame) {
    const Stopwatch watch;
    mMotions.motions.push_back(mEstimator.next({frame.data(), mSize.width, mSize}));
    mMotions.seconds += watch.seconds();
}

MeasuredMotions FrameMeasurer::motions(std::string video) && {
    mMotions.video = std::move(video);
    return std::move(mMotions);
}

void requireUsable(const PlanWish& wish) {
    if (wish.keep && !(*wish.keep > 0 && *wish.keep <= 1))
        throw UsageError("--keep is a share of the width and height: above 0, at most 1");
    if (!(wish.steadiness >= 0 && wish.steadiness <= 1))
        throw UsageError("--steadiness is the share of the motion that may remain: 0 to 1");
}

std::vector<refine::FrameMotion> measureVideo(const fs::path& video, FrameSize size, int firstFrame,
                                              int frames, const Measured& measured) {
    media::VideoReader reader(video);
    requireSize(video, {reader.width(), reader.height()}, {size.width, size.height});
    FrameMeasurer measurer(size);
    media::FramesAhead decoded(reader, std::int64_t{firstFrame} + frames);
    std::vector<std::uint8_t> pixels;
    for (int read = 0; measurer.measured() < frames && decoded.next(pixels); ++read) {
        if (read < firstFrame)
            continue;
        measurer(pixels);
        measured(measurer.measured());
    }
    if (measurer.measured() < frames)
        requireFrameCount(video, firstFrame + measurer.measured(), firstFrame + frames);
    return std::move(measurer).motions(video.filename().string()).motions;
}

RefinedSweep planSweep(std::span<const refine::FrameMotion> motions, const RecordReader& record,
                       const PlanWish& wish) {
    if (renderedFrames(record.raw()) == 0)
        throw ToolError("the sweep cannot be refined: its record renders no frame");
    const refine::RecordFacts facts = refine::factsOf(record);
    refine::PathPlan plan =
        planned(motions, facts.size, {.shown = refine::shownFrames(facts)}, wish);
    std::vector<std::byte> bytes = required(refine::writeRecord(facts, plan));
    return {std::move(plan), std::move(bytes)};
}

RefinedSummary writeRefinement(OutputFiles& outputs, const SweepFiles& files,
                               const MeasuredMotions& measured, const RecordReader& record,
                               const SweepChecksums& sums, const PlanWish& wish) {
    const Stopwatch planning;
    const RefinedSweep refined = planSweep(measured.motions, record, wish);
    RefinedSummary summary = summaryOf(record.frameCount(), refined.plan);
    summary.video = measured.video;
    summary.seconds = {measured.seconds, planning.seconds(), measured.seconds + planning.seconds()};
    const std::string csv = motionCsv(measured.motions);
    summary.engineVideo = sums.video;
    summary.engineRecord = sums.record;
    summary.motions = sha256(csv);
    summary.record = sha256(charsOf(refined.record));
    outputs.write(files.refinedRecord, charsOf(refined.record));
    outputs.write(files.refinedPath, csv);
    outputs.write(files.refinedSummary, toJsonText(summary));
    return summary;
}

RefinedSummary refineSweep(const RefineOptions& options) {
    requireUsable(options.wish);
    const SignalGuard signals;
    const Sweep sweep = openSweep(options.directory);
    const MeasuredMotions measured =
        options.replan ? formerMotions(options.directory) : motionsOf(sweep);
    OutputFiles outputs(options.force);
    const SweepChecksums sums{
        sha256OfFile(sweep.files.video), sha256OfFile(sweep.files.record), {}};
    const RefinedSummary summary =
        writeRefinement(outputs, sweep.files, measured, sweep.record, sums, options.wish);
    SignalGuard::check();
    outputs.commit();
    return summary;
}

}  // namespace orbitwalk::tool
