#pragma once

#include <CLI/CLI.hpp>
#include <memory>

/// One function a command, each in a source file of its own: it declares the command and its
/// options, and sets the callback that runs it. A callback reports failure by throwing ToolError or
/// MediaError.
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

/// The program's whole command line.
std::unique_ptr<CLI::App> commandLine();

}  // namespace orbitwalk::tool
