#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

/// What is installed about the command line beside it: man pages and completions, written from the
/// commands' own declarations.
namespace orbitwalk::tool {

/// One option or positional argument, as the manual and the shells name it.
struct Argument {
    std::vector<std::string> names;    ///< "-o", "--output"; for a positional its one name.
    std::string value;                 ///< What follows it, such as INT:0 to 51; empty for a flag.
    std::vector<std::string> choices;  ///< All values, where these are few.
    bool isNumber = false;
    bool isPositional = false;
};

Argument describe(const CLI::Option& option);

/// The command's options in the order of its help, without positionals.
std::vector<const CLI::Option*> optionsOf(const CLI::App& command);

/// The command's positional arguments, in their order.
std::vector<const CLI::Option*> positionalsOf(const CLI::App& command);

/// The program's commands in the order of its help.
std::vector<const CLI::App*> commandsOf(const CLI::App& program);

/// A description up to where it goes into detail.
std::string shortly(const std::string& description);

/// A page in roff: of the program with its commands, or of one command.
std::string programPage(const CLI::App& program);
std::string commandPage(const CLI::App& program, const CLI::App& command);

std::string bashCompletion(const CLI::App& program);
std::string zshCompletion(const CLI::App& program);
std::string fishCompletion(const CLI::App& program);

}  // namespace orbitwalk::tool
