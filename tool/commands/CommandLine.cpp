#include "commands/Commands.h"
#include "terminal/Print.h"

namespace orbitwalk::tool {

std::unique_ptr<CLI::App> commandLine() {
    auto app = std::make_unique<CLI::App>("Capture, look at and trust a panning-video sweep");
    app->name("orbitwalk");
    app->set_version_flag("--version", ORBITWALK_VERSION);
    app->require_subcommand(1);
    addSimulateCommand(*app);
    addCaptureCommand(*app);
    addInspectCommand(*app);
    addEvaluateCommand(*app);
    addRenderCommand(*app);
    addPlayerCommand(*app);
    addReportCommand(*app);
    addRefineCommand(*app);
    addBatchCommand(*app);
    addRunClipCommand(*app);
    return app;
}

void addCommonOptions(CLI::App& command, CommonOptions& options, Writes writes) {
    command.add_flag("--json", options.json, "Print the result as JSON");
    command
        .add_flag("-q,--quiet", options.quiet,
                  "Print no progress, no notes and no text; warnings, errors and JSON stay")
        ->each([](const std::string& value) { setQuiet(value == "true"); });
    if (writes == Writes::Files)
        command.add_flag("--force", options.force,
                         "Replace files that orbitwalk did not write, too");
}

void printSummary(const CommonOptions& options, const std::string& json, const std::string& text) {
    if (options.json)
        printOut(json);
    else if (!isQuiet())
        printOut(text);
}

}  // namespace orbitwalk::tool
