#include "evaluate/Evaluation.h"

#include <algorithm>
#include <cstdio>

#include "evaluate/LumaVideo.h"
#include "sweep/Playlist.h"
#include "sweep/Steadiness.h"
#include "sweep/Sweep.h"
#include "sweep/TruthCsv.h"
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
    while (video.next())
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

std::string percent(double share) {
    char text[40];
    std::snprintf(text, sizeof text, "%.1f %%", share * 100);
    return text;
}

/// @param measuredBy  whose word the share is.
Verdict verdictOf(std::optional<double> share, double viewKept, const std::string& measuredBy) {
    Verdict verdict{share && *share < 1, share, viewKept, {}};
    const std::string kept = ", " + percent(viewKept) + " of the view is kept";
    if (!share)
        verdict.text = "whether it is steadier could not be measured " + measuredBy + kept;
    else
        verdict.text = std::string(verdict.steadier ? "steadier: " : "not steadier: ") +
                       percent(*share) + " of the shake remains" + kept + " (" + measuredBy + ")";
    return verdict;
}

Verdict verdictOf(const SourceComparison& source, const std::optional<ResidualMotion>& residual) {
    const bool measured = residual && source.residual && source.residual->shift() > 0;
    return verdictOf(
        measured ? std::optional(residual->shift() / source.residual->shift()) : std::nullopt,
        source.kept, "by the pictures");
}

/// By the motions that the record was made of.
RecordEvaluation evaluated(const Sweep& sweep) {
    const std::string measuredBy = sweep.refinement ? "by the motion that refine measured"
                                                    : "by the motion that the capture measured";
    RecordEvaluation result{sweepFacts(sweep.record), {}};
    if (!sweep.refinement && sweep.path.empty()) {
        result.verdict = verdictOf(std::nullopt, result.facts.keptView, measuredBy);
        return result;
    }
    const Steadiness steadiness = steadinessOf(sweep);
    if (steadiness.before.shift() > 0)
        result.facts.residualShare = steadiness.after.shift() / steadiness.before.shift();
    result.verdict = verdictOf(result.facts.residualShare, steadiness.viewKept, measuredBy);
    std::optional<std::string> warning;
    if (!sweep.refinement)
        warning = repeatedMotionWarning(
            static_cast<int>(std::ranges::count(sweep.path, true, &SweepRow::repeated)),
            sweep.record.frameCount());
    if (!steadiness.measured)
        result.verdict = {false, std::nullopt, steadiness.viewKept,
                          warning.value_or(verdictOn(steadiness))};
    else if (warning)
        result.verdict.text += "; " + *warning;
    return result;
}

void evaluateSweep(const EvaluateOptions& options, Evaluation& evaluation,
                   std::optional<Sweep>& sweep) {
    sweep.emplace(openSweep(options.directory));
    evaluation.sweep = evaluated(*sweep);
    evaluation.vertical = isVertical(sweep->summary);
    evaluation.verdict = evaluation.sweep->verdict;
    if (!options.truth.empty())
        evaluation.path =
            pathError(requirePath(*sweep), readTruthCsv(options.truth, sweep->record.frameCount()));
    if (!options.refined)
        return;
    sweep.emplace(openSweep(options.directory, RecordBy::Refinement));
    evaluation.refined = evaluated(*sweep);
    evaluation.verdict = evaluation.refined->verdict;
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
    evaluation.video = judge(options, sweep);
    if (const auto& source = evaluation.video->source)
        evaluation.verdict = verdictOf(*source, evaluation.video->residual);
    return evaluation;
}

}  // namespace orbitwalk::tool
