#include "commands/Commands.h"

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
    return app;
}

}  // namespace orbitwalk::tool
