#include <memory>
#include <nlohmann/json.hpp>

#include "commands/Commands.h"
#include "evaluate/Evaluation.h"
#include "terminal/Print.h"

namespace orbitwalk::tool {

namespace {

struct EvaluateArguments {
    EvaluateOptions evaluate;
    CommonOptions common;
};

void run(const EvaluateArguments& arguments) {
    const Evaluation evaluation = evaluate(arguments.evaluate);
    for (const std::string& warning : evaluation.warnings)
        printWarning(warning);
    printSummary(arguments.common, jsonText(toJson(evaluation)), toText(evaluation));
}

}  // namespace

void addEvaluateCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "evaluate", "Measure a capture against the truth, and how steady a video is");
    const auto arguments = std::make_shared<EvaluateArguments>();
    EvaluateOptions& options = arguments->evaluate;
    command->add_option("DIR", options.directory, "What capture wrote: sweep.mp4, .obw and .csv");
    command->add_option("--truth", options.truth,
                        "True motion of the capture's clip, as simulate writes it");
    command->add_option("--video", options.video,
                        "Any video to judge; with DIR, one that was rendered from the capture");
    command->add_option("--against", options.against,
                        "Video that it was made from, frame by frame; with DIR, sweep.mp4 or the "
                        "clip captured");
    command->add_flag("--refined", options.refined,
                      "Judge the record of orbitwalk refine beside the engine's; with --video, one "
                      "that was rendered from it");
    addCommonOptions(*command, arguments->common, Writes::Nothing);
    command->callback([arguments] { run(*arguments); });
}

}  // namespace orbitwalk::tool
