#include <memory>

#include "commands/Commands.h"
#include "render/Rendering.h"
#include "terminal/Print.h"

namespace orbitwalk::tool {

namespace {

struct RenderArguments {
    CommonOptions common;
    RenderOptions render;
    bool refined = false;
};

void run(RenderArguments arguments) {
    RenderOptions& options = arguments.render;
    options.recordBy = arguments.refined ? RecordBy::Refinement : RecordBy::Engine;
    options.replaceForeign = arguments.common.force;
    const RenderSummary summary = renderSweep(options);
    for (const std::string& warning : summary.warnings)
        printWarning(warning);
    printSummary(arguments.common, toJsonText(summary), toText(summary));
}

}  // namespace

void addRenderCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "render", "Play a captured sweep the way a player does, into a video and pictures");
    const auto arguments = std::make_shared<RenderArguments>();
    RenderOptions& options = arguments->render;
    SteadySettings& steady = options.steady;
    command->add_option("DIR", options.directory, "What capture wrote: sweep.mp4, .obw and .csv")
        ->required();
    command->add_option("-o,--output", options.video,
                        "Stabilised video to write, MP4; marked to be played upright");
    command->add_option("--strip", options.strip,
                        "Contact sheet to write, PNG: frames as recorded above the steady ones");
    command->add_option("--panorama", options.panorama,
                        "The whole sweep as one picture to write, PNG");
    command->add_flag("--refined", arguments->refined, kRefinedHelp);
    command->add_flag("--compare", steady.compare,
                      "Put the frames as recorded on the left of the steady ones, both labelled; "
                      "the video is twice as wide, at most 3840 pixels");
    command->add_flag("--border-frames", steady.borderFrames,
                      "Add the frames that the record has before and after the sweep");
    auto* quality = command->add_option("--quality", steady.quality,
                                        "Constant rate factor of the encoder, lower is better");
    quality->check(CLI::Range(0, 51))->capture_default_str();
    command->add_option("--bit-rate", steady.bitRate, "Bits a second, instead of --quality")
        ->check(CLI::Range(1000, 1000000000))
        ->excludes(quality);
    command
        ->add_option("--threads", steady.threads,
                     "Threads at work, at most one a core; 0: one a core")
        ->check(CLI::Range(0, 64))
        ->capture_default_str();
    addCommonOptions(*command, arguments->common, Writes::Files);
    command->callback([arguments] { run(*arguments); });
}

}  // namespace orbitwalk::tool
