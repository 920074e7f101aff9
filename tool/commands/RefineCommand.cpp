#include <memory>

#include "commands/Commands.h"
#include "refine/Refinement.h"
#include "terminal/Print.h"

namespace orbitwalk::tool {

namespace {

struct RefineArguments {
    RefineOptions refine;
    CommonOptions common;
};

void run(RefineArguments arguments) {
    arguments.refine.force = arguments.common.force;
    const RefinedSummary summary = refineSweep(arguments.refine);
    for (const std::string& warning : warningsOn(steadinessOf(summary)))
        printWarning(warning);
    printSummary(arguments.common, toJsonText(summary), toText(summary));
}

}  // namespace

void addRefineCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "refine",
        "Measure a captured sweep anew and plan its path over all frames: refined.obw, a record "
        "for the same players, refined.csv, its motions, and refined.json");
    const auto arguments = std::make_shared<RefineArguments>();
    RefineOptions& options = arguments->refine;
    command->add_option("DIR", options.directory, "What capture wrote; its files stay as they are")
        ->required();
    auto* keep = command->add_option("--keep", options.wish.keep,
                                     "Share of the width and height that the crop keeps, such as "
                                     "0.9; chosen by --steadiness without it");
    command
        ->add_option("--steadiness", options.wish.steadiness,
                     "Share of the shake that may remain; the largest crop that reaches it")
        ->excludes(keep)
        ->capture_default_str();
    command->add_flag("--replan", options.replan,
                      "Plan again from the motions of refined.csv, without decoding");
    addCommonOptions(*command, arguments->common, Writes::Files);
    command->callback([arguments] { run(*arguments); });
}

}  // namespace orbitwalk::tool
