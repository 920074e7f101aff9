#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>

#include "commands/Commands.h"
#include "terminal/ToolError.h"

namespace {

/// CLI11's own words fill several lines.
std::string optionError(const CLI::App& app, const CLI::ParseError& error, const char* command) {
    std::string line = error.what();
    std::string help = "orbitwalk ";
    if (const auto chosen = app.get_subcommands(); !chosen.empty())
        help += chosen.front()->get_name() + ' ';
    else if (command && *command != '-')
        line = "there is no command " + std::string(command);
    std::ranges::replace(line, '\n', ' ');
    return line + " (see " + help + "--help)";
}

}  // namespace

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
        if (e.get_exit_code() == 0)
            return app.exit(e);
        std::fprintf(stderr, "orbitwalk: %s\n",
                     optionError(app, e, argc > 1 ? argv[1] : nullptr).c_str());
        return 2;
    } catch (const orbitwalk::tool::ToolError& e) {
        std::fprintf(stderr, "orbitwalk: %s\n", e.what());
        return e.exitCode();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "orbitwalk: %s\n", e.what());
        return 1;
    }
    return 0;
}
