#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

/// One function a command: it declares the command and its options, and sets the callback that runs
/// it. A callback reports failure by throwing ToolError or MediaError.
namespace orbitwalk::tool {

inline constexpr char kRefinedHelp[] = "Take the record of orbitwalk refine, not the engine's";

void addSimulateCommand(CLI::App& app);
void addCaptureCommand(CLI::App& app);
void addInspectCommand(CLI::App& app);
void addEvaluateCommand(CLI::App& app);
void addRenderCommand(CLI::App& app);
void addPlayerCommand(CLI::App& app);
void addReportCommand(CLI::App& app);
void addRefineCommand(CLI::App& app);
void addBatchCommand(CLI::App& app);
/// What batch runs for each clip.
void addRunClipCommand(CLI::App& app);

/// The program's whole command line.
std::unique_ptr<CLI::App> commandLine();

/// What every command has.
struct CommonOptions {
    bool json = false;   ///< The summary on stdout is JSON.
    bool quiet = false;  ///< See isQuiet, which parsing sets as well.
    bool force = false;  ///< Files that the tool did not write may be replaced.
};

enum class Writes { Nothing, Files };

/// Declares --json, --quiet and, for a command that writes files, --force.
/// @param options  outlives the command.
void addCommonOptions(CLI::App& command, CommonOptions& options, Writes writes);

/// A command's result on stdout: the JSON where it was asked for, else the text unless quiet.
/// @throws ToolError: see printOut.
void printSummary(const CommonOptions& options, const std::string& json, const std::string& text);

/// A command that has said what went wrong and ends with an exit status.
struct CommandFailed {
    int status;
};

/// Runs a command line to its end, the program's name first. Errors are printed, one line each.
/// @return the exit status. On the main thread.
int runProgram(int argc, char** argv);

}  // namespace orbitwalk::tool
