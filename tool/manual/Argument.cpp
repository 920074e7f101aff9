#include <algorithm>

#include "manual/Manual.h"

namespace orbitwalk::tool {

namespace {

/// {a,b,c} in the type of an option, which CLI11 writes from its check.
std::vector<std::string> choicesIn(const std::string& type) {
    const std::size_t open = type.find('{');
    const std::size_t close = type.find('}', open);
    if (open == std::string::npos || close == std::string::npos)
        return {};
    return CLI::detail::split(type.substr(open + 1, close - open - 1), ',');
}

}  // namespace

Argument describe(const CLI::Option& option) {
    Argument argument;
    argument.isPositional = option.get_positional();
    if (argument.isPositional)
        argument.names.push_back(option.get_name(true));
    for (const std::string& name : option.get_snames())
        argument.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        argument.names.push_back("--" + name);
    if (option.get_items_expected_max() == 0)
        return argument;
    argument.value = option.get_type_name();
    argument.choices = choicesIn(argument.value);
    for (const char* number : {"INT", "UINT", "FLOAT"})
        argument.isNumber = argument.isNumber || argument.value.starts_with(number);
    return argument;
}

std::vector<const CLI::Option*> optionsOf(const CLI::App& command) {
    return command.get_options([](const CLI::Option* option) { return !option->get_positional(); });
}

std::vector<const CLI::Option*> positionalsOf(const CLI::App& command) {
    return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::vector<const CLI::App*> commandsOf(const CLI::App& program) {
    return program.get_subcommands(
        [](const CLI::App* command) { return !command->get_group().empty(); });
}

std::string shortly(const std::string& description) {
    return description.substr(0, std::min(description.find(": "), description.find("; ")));
}

}  // namespace orbitwalk::tool
