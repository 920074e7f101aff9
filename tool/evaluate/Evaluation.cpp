#include "evaluate/Evaluation.h"

#include <algorithm>

#include "evaluate/JudgedFrame.h"
#include "sweep/Degrees.h"
#include "sweep/Playlist.h"
#include "sweep/Steadiness.h"
#include "sweep/Sweep.h"
#include "sweep/Tables.h"
#include "terminal/FreedMemory.h"
#include "terminal/ProgressBar.h"
#include "terminal/SignalGuard.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;

void checkOptions(const EvaluateOptions& options) {
    if (options.directory.empty() && options.video.empty())
        throw UsageError("nothing to evaluate: give a capture's directory or --video");
    if (options.directory.empty() && !options.truth.empty())
        throw UsageError("--truth is of a capture: give its directory");
    if (options.directory.empty() && options.refined)
        throw UsageError("--refined is of a capture: give its directory");
    if (options.video.empty() && !options.against.empty())
        throw UsageError("--against needs a video to judge: give --video");
}

/// Frames of the source that a video rendered from the sweep shows, with or without its border
/// frames; empty when it has as many as neither.
std::vector<int> framesShown(const RecordReader& record, std::int64_t videoFrames) {
    for (const bool withBorderFrames : {true, false}) {
        const std::vector<Shot> shots = playlist(record, withBorderFrames);
        if (std::ssize(shots) != videoFrames)
            continue;
        std::vector<int> frames;
        for (const Shot& shot : shots)
            frames.push_back(shot.frame);
        return frames;
    }
    return {};
}

std::vector<int> framesShown(const RecordReader& record, const fs::path& file) {
    LumaVideo video(file);
    requireSize(file, video.size(), {record.width(), record.height()});
    std::vector<int> frames = framesShown(record, video.expectedFrames());
    if (!frames.empty())
        return frames;
    // The container's word may be wrong.
    while (!video.next().empty())
        SignalGuard::check();
    frames = framesShown(record, video.framesRead());
    if (frames.empty())
        throw ToolError("the video has " + std::to_string(video.framesRead()) +
                        " frames, which is no rendering of this sweep");
    return frames;
}

std::optional<Source> sourceOf(const EvaluateOptions& options, const std::optional<Sweep>& sweep) {
    if (!sweep)
        return options.against.empty()
                   ? std::nullopt
                   : std::make_optional(Source{options.against, {}, false, 0, false});
    const fs::path video = options.against.empty() ? sweep->files.video : options.against;
    requireSize(video, LumaVideo(video).size(), sweep->size());
    const int recorded = sweep->record.frameCount();
    // The clip captured goes on where the sweep is full.
    const bool goesOn = video != sweep->files.video && recorded == OBW_MAX_FRAMES;
    return Source{video, framesShown(sweep->record, options.video), sweep->record.isFlipped(),
                  recorded, goesOn};
}

VideoQuality judge(const EvaluateOptions& options, const std::optional<Sweep>& sweep) {
    const std::optional<Source> source = sourceOf(options, sweep);
    ProgressBar bar("Judging", LumaVideo(options.video).expectedFrames());
    return judgeVideo(options.video, source, [&](int judged) {
        SignalGuard::check();
        bar.update(judged);
    });
}

refine::PathResidual residualOf(const std::optional<ResidualMotion>& motion) {
    const ResidualMotion measured = motion.value_or(ResidualMotion{});
    return {measured.x, measured.y, radians(measured.angle)};
}

/// @param source  that the video was compared with.
Steadiness steadinessOf(const VideoQuality& video, const SourceComparison& source) {
    Steadiness steadiness{residualOf(source.residual), residualOf(video.residual), source.kept,
                          video.frames, video.frames};
    if (video.residual && source.residual)
        steadiness.unmeasured = std::max(video.residual->unmeasured, source.residual->unmeasured);
    return steadiness;
}

RecordEvaluation evaluated(const Sweep& sweep, Evaluation& evaluation) {
    RecordEvaluation result{sweepFacts(sweep.record), {}};
    const std::optional<Steadiness> steadiness = steadinessOf(sweep);
    if (!steadiness)
        return result;
    result.verdict = verdictOn(*steadiness);
    evaluation.warnings = warningsOn(*steadiness);
    evaluation.verdict = result.verdict;
    evaluation.judgedBy = sweep.refinement ? "by the motion that refine measured"
                                           : "by the motion that the capture measured";
    return result;
}

void evaluateSweep(const EvaluateOptions& options, Evaluation& evaluation,
                   std::optional<Sweep>& sweep) {
    sweep.emplace(openSweep(options.directory));
    evaluation.sweep = evaluated(*sweep, evaluation);
    evaluation.vertical = isVertical(sweep->summary);
    if (!options.truth.empty())
        evaluation.path =
            pathError(requirePath(*sweep), readTruthCsv(options.truth, sweep->record.frameCount()));
    if (!options.refined)
        return;
    sweep.emplace(openSweep(options.directory, RecordBy::Refinement));
    evaluation.refined = evaluated(*sweep, evaluation);
}

}  // namespace

Evaluation evaluate(const EvaluateOptions& options) {
    checkOptions(options);
    const SignalGuard signals;
    Evaluation evaluation;
    std::optional<Sweep> sweep;
    if (!options.directory.empty())
        evaluateSweep(options, evaluation, sweep);
    if (options.video.empty())
        return evaluation;
    keepFreedMemory();
    evaluation.video = judge(options, sweep);
    if (const auto& source = evaluation.video->source) {
        const Steadiness steadiness = steadinessOf(*evaluation.video, *source);
        evaluation.verdict = verdictOn(steadiness);
        evaluation.warnings = warningsOn(steadiness);
        evaluation.judgedBy = "by the pictures";
    }
    return evaluation;
}

}  // namespace orbitwalk::tool
