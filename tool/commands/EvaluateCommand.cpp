#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "commands/Commands.h"
#include "evaluate/Evaluation.h"
#include "evaluate/LumaVideo.h"
#include "sweep/Playlist.h"
#include "sweep/Sweep.h"
#include "sweep/TruthCsv.h"
#include "terminal/Print.h"
#include "terminal/ProgressBar.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;

struct EvaluateOptions {
    fs::path directory;
    fs::path truth;
    fs::path video;
    fs::path against;
    bool refined = false;
    bool json = false;
};

void checkOptions(const EvaluateOptions& options) {
    if (options.directory.empty() && options.video.empty())
        throw ToolError("nothing to evaluate: give a capture's directory or --video");
    if (options.directory.empty() && !options.truth.empty())
        throw ToolError("--truth is of a capture: give its directory");
    if (options.video.empty() && !options.against.empty())
        throw ToolError("--against needs a video to judge: give --video");
}

PathError pathAgainst(const fs::path& truth, const Sweep& sweep) {
    return pathError(requirePath(sweep), readTruthCsv(truth, sweep.record.frameCount()));
}

/// Frames of the source that a video rendered from the sweep shows, with or without its border
/// frames.
std::vector<int> framesShown(const RecordReader& record, int videoFrames) {
    for (const bool withBorderFrames : {true, false}) {
        const std::vector<Shot> shots = playlist(record, withBorderFrames);
        if (std::ssize(shots) != videoFrames)
            continue;
        std::vector<int> frames;
        for (const Shot& shot : shots)
            frames.push_back(shot.frame);
        return frames;
    }
    throw ToolError("the video has " + std::to_string(videoFrames) +
                    " frames, which is no rendering of this sweep");
}

/// Decodes a whole video of the sweep. @return its number of frames.
int countFrames(const fs::path& file, const Sweep& sweep) {
    LumaVideo video(file);
    requireSize(file, video.size(), sweep.size());
    while (video.next()) {
    }
    return video.framesRead();
}

/// The clip captured goes on where the sweep is full.
void requireFrames(const fs::path& source, const Sweep& sweep) {
    const int frames = countFrames(source, sweep), recorded = sweep.record.frameCount();
    const bool endsEarly = source != sweep.files.video && recorded == OBW_MAX_FRAMES;
    requireFrameCount(source, endsEarly ? std::min(frames, recorded) : frames, recorded);
}

std::optional<Source> sourceOf(const EvaluateOptions& options, const std::optional<Sweep>& sweep) {
    if (!sweep)
        return options.against.empty() ? std::nullopt
                                       : std::make_optional<Source>({options.against, {}, false});
    const fs::path video = options.against.empty() ? sweep->files.video : options.against;
    requireFrames(video, *sweep);
    return Source{video, framesShown(sweep->record, countFrames(options.video, *sweep)),
                  sweep->record.isFlipped()};
}

VideoQuality judge(const EvaluateOptions& options, const std::optional<Sweep>& sweep) {
    const std::optional<Source> source = sourceOf(options, sweep);
    ProgressBar bar("Judging", LumaVideo(options.video).expectedFrames());
    return judgeVideo(options.video, source, [&](int judged) { bar.update(judged); });
}

void evaluate(const EvaluateOptions& options) {
    checkOptions(options);
    std::optional<Sweep> sweep;
    if (!options.directory.empty())
        sweep.emplace(openSweep(options.directory,
                                options.refined ? RecordBy::Refinement : RecordBy::Engine));
    Evaluation evaluation;
    if (sweep)
        evaluation.sweep = sweepFacts(sweep->record);
    if (!options.truth.empty())
        evaluation.path = pathAgainst(options.truth, *sweep);
    if (!options.video.empty())
        evaluation.video = judge(options, sweep);
    printOut(options.json ? toJson(evaluation).dump(2) + "\n" : toText(evaluation));
}

}  // namespace

void addEvaluateCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "evaluate", "Measure a capture against the truth, and how steady a video is");
    const auto options = std::make_shared<EvaluateOptions>();
    command->add_option("DIR", options->directory, "What capture wrote: sweep.mp4, .obw and .csv");
    command->add_option("--truth", options->truth,
                        "True motion of the capture's clip, as simulate writes it");
    command->add_option("--video", options->video,
                        "Any video to judge; with DIR, one that was rendered from the capture");
    command->add_option("--against", options->against,
                        "Video that it was made from, frame by frame; with DIR, sweep.mp4 or the "
                        "clip captured");
    command->add_flag("--refined", options->refined, kRefinedHelp);
    command->add_flag("--json", options->json, "Figures as JSON");
    command->callback([options] { evaluate(*options); });
}

}  // namespace orbitwalk::tool
