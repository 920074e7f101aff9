#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace orbitwalk::tool {

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

}  // namespace orbitwalk::tool
