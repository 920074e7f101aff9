#include "commands/Commands.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <new>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>

#include "terminal/Print.h"
#include "terminal/ToolError.h"

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

namespace {

/// The command of the arguments, or the program while there is none.
const CLI::App& chosen(const CLI::App& app) {
    const auto commands = app.get_subcommands();
    return commands.empty() ? app : *commands.front();
}

/// What cannot be parsed, in one line; CLI11's own words fill several. An option that does not
/// exist is named rather than what is missing beside it.
std::string optionError(const CLI::App& app, const CLI::ParseError& error, const char* first) {
    const CLI::App& command = chosen(app);
    std::string line = error.what();
    const auto extras = command.remaining();
    const auto unknown = std::ranges::find_if(
        extras, [](const std::string& extra) { return extra.size() > 1 && extra.front() == '-'; });
    if (unknown != extras.end())
        line = "there is no option " + *unknown;
    else if (&command == &app && first)
        line = "there is no command " + std::string(first);
    std::ranges::replace(line, '\n', ' ');
    const std::string name = &command == &app ? "" : command.get_name() + " ";
    return line + " (see orbitwalk " + name + "--help)";
}

/// What went wrong, without the names of functions that libraries put before it.
std::string reasonOf(const std::exception& error) {
    if (const auto* picture = dynamic_cast<const cv::Exception*>(&error))
        return picture->code == cv::Error::StsNoMem ? "out of memory" : "OpenCV: " + picture->err;
    if (const auto* file = dynamic_cast<const std::filesystem::filesystem_error*>(&error))
        return file->path1().string() + ": " + file->code().message();
    if (const auto* system = dynamic_cast<const std::system_error*>(&error))
        return system->code().message();
    if (dynamic_cast<const std::bad_alloc*>(&error) ||
        dynamic_cast<const std::length_error*>(&error))
        return "out of memory";
    if (dynamic_cast<const std::logic_error*>(&error))
        return std::string("a fault of orbitwalk itself: ") + error.what();
    const std::string text = error.what();
    const std::size_t end = dynamic_cast<const nlohmann::json::exception*>(&error)
                                ? text.find("] ")
                                : std::string::npos;
    return end == std::string::npos ? text : text.substr(end + 2);
}

/// Prints what --help and --version ask for.
int printAsked(const CLI::App& app, const CLI::ParseError& asked) {
    std::ostringstream text;
    app.exit(asked, text, text);
    printOut(text.str());
    return 0;
}

int run(CLI::App& app, int argc, char** argv) {
    try {
        app.parse(argc, argv);
        return 0;
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return printAsked(app, error);
        printError(optionError(app, error, argc > 1 ? argv[1] : nullptr));
        return 2;
    }
}

}  // namespace

int runProgram(int argc, char** argv) {
    try {
        return run(*commandLine(), argc, argv);
    } catch (const CommandFailed& failed) {
        return failed.status;
    } catch (const ToolError& error) {
        printError(error.what());
        return error.exitCode();
    } catch (const std::exception& error) {
        printError(reasonOf(error));
        return 1;
    }
}

}  // namespace orbitwalk::tool
