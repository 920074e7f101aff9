#include <cstdio>
#include <exception>

#include "commands/Commands.h"
#include "common/ToolError.h"

int main(int argc, char** argv) {
    CLI::App app{"Capture, look at and trust a panning-video sweep."};
    app.name("orbitwalk");
    app.set_version_flag("--version", ORBITWALK_VERSION);
    app.require_subcommand(1);
    orbitwalk::tool::addSimulateCommand(app);
    orbitwalk::tool::addCaptureCommand(app);
    orbitwalk::tool::addInspectCommand(app);
    orbitwalk::tool::addEvaluateCommand(app);
    orbitwalk::tool::addRenderCommand(app);
    orbitwalk::tool::addReportCommand(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e);
    } catch (const orbitwalk::tool::ToolError& e) {
        std::fprintf(stderr, "orbitwalk: %s\n", e.what());
        return e.exitCode();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "orbitwalk: %s\n", e.what());
        return 1;
    }
    return 0;
}
