#include "manual/Manual.h"

namespace orbitwalk::tool {

namespace {

/// Within single quotes of bash and zsh.
std::string quoted(const std::string& text) {
    return "'" + CLI::detail::find_and_replace(text, "'", "'\\''") + "'";
}

std::string joined(const std::vector<std::string>& words, const std::string& between) {
    return CLI::detail::join(words, between);
}

/// Every name of the command's options, in one line.
std::string optionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : optionsOf(command))
        for (const std::string& name : describe(*option).names)
            names.push_back(name);
    return joined(names, " ");
}

/// The lines of bash's case that answer what follows an option of the command.
std::string bashValues(const CLI::App& command) {
    std::string lines;
    for (const CLI::Option* option : optionsOf(command)) {
        const Argument argument = describe(*option);
        if (argument.value.empty())
            continue;
        std::vector<std::string> patterns;
        for (const std::string& name : argument.names)
            patterns.push_back(quoted(command.get_name() + " " + name));
        lines += "        " + joined(patterns, " | ") + ") ";
        if (!argument.choices.empty())
            lines += "words=" + quoted(joined(argument.choices, " "));
        else
            lines += argument.isNumber ? "words=" : "return";
        lines += " ;;\n";
    }
    return lines;
}

/// What zsh's _arguments takes for an option's value or a positional.
std::string zshValue(const Argument& argument) {
    if (argument.value.empty())
        return "";
    const std::string name = argument.isPositional ? argument.names.front() : "value";
    if (!argument.choices.empty())
        return ":" + name + ":(" + joined(argument.choices, " ") + ")";
    return ":" + name + ":" + (argument.isNumber ? " " : "_files");
}

std::string zshArgument(const CLI::Option& option) {
    Argument argument = describe(option);
    std::string about = option.get_description();
    for (const char* special : {"[", "]", ":"})
        about = CLI::detail::find_and_replace(about, special, std::string("\\") + special);
    const std::string rest = quoted("[" + about + "]" + zshValue(argument));
    if (argument.isPositional)
        return quoted((option.get_required() ? "" : ":") + zshValue(argument));
    // Both --name value and --name=value.
    if (!argument.value.empty())
        argument.names.back() += "=";
    if (argument.names.size() == 1)
        return argument.names.front() + rest;
    return quoted("(" + joined(argument.names, " ") + ")") + "{" + joined(argument.names, ",") +
           "}" + rest;
}

std::string zshArguments(const CLI::App& command) {
    std::string text;
    for (const CLI::Option* option : command.get_options())
        text += " \\\n                    " + zshArgument(*option);
    return text;
}

std::string fishQuoted(const std::string& text) {
    const std::string escaped = CLI::detail::find_and_replace(text, "\\", "\\\\");
    return "'" + CLI::detail::find_and_replace(escaped, "'", "\\'") + "'";
}

std::string fishOption(const std::string& when, const CLI::Option& option) {
    const Argument argument = describe(option);
    std::string line = "complete -c orbitwalk -n " + fishQuoted(when);
    for (const std::string& name : argument.names)
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (!argument.choices.empty())
        line += " -x -a " + fishQuoted(joined(argument.choices, " "));
    else if (!argument.value.empty())
        line += argument.isNumber ? " -x" : " -r -F";
    return line + " -d " + fishQuoted(option.get_description()) + "\n";
}

}  // namespace

std::string bashCompletion(const CLI::App& program) {
    std::vector<std::string> commands;
    std::string values;
    std::string options;
    for (const CLI::App* command : commandsOf(program)) {
        commands.push_back(command->get_name());
        values += bashValues(*command);
        options +=
            "        " + command->get_name() + ") words=" + quoted(optionNames(*command)) + " ;;\n";
    }
    return R"(# Completion of orbitwalk in bash. File names are readline's own, where no words are set.
_orbitwalk() {
    local cur=${COMP_WORDS[COMP_CWORD]} at=$((COMP_CWORD - 1)) command=${COMP_WORDS[1]} words
    # --option=value is three words to bash.
    [[ $cur == = ]] && cur=
    [[ ${COMP_WORDS[at]} == = ]] && ((at--))
    ((COMP_CWORD == 1)) && command=
    COMPREPLY=()
    case "$command ${COMP_WORDS[at]}" in
)" + values +
           R"(    *) case $command in
        '') words=)" +
           quoted(joined(commands, " ") + " " + optionNames(program)) + " ;;\n" + options +
           R"(        esac
        [[ -z $command || $cur == -* ]] || return ;;
    esac
    compopt +o default 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")
}
complete -o default -F _orbitwalk orbitwalk
)";
}

std::string zshCompletion(const CLI::App& program) {
    std::string commands;
    std::string arguments;
    for (const CLI::App* command : commandsOf(program)) {
        commands += "                " +
                    quoted(command->get_name() + ":" + shortly(command->get_description())) + "\n";
        arguments += "                " + command->get_name() + ")\n                _arguments" +
                     zshArguments(*command) + "\n                ;;\n";
    }
    return "#compdef orbitwalk\n# Completion of orbitwalk in zsh.\n_orbitwalk() {\n"
           "    local line state\n    _arguments -C" +
           zshArguments(program) +
           " \\\n                    '1: :->command' '*:: :->arguments'\n"
           "    case $state in\n        command)\n            local -a commands=(\n" +
           commands +
           "            )\n            _describe command commands\n            ;;\n"
           "        arguments)\n            case $line[1] in\n" +
           arguments + "            esac\n            ;;\n    esac\n}\n_orbitwalk \"$@\"\n";
}

std::string fishCompletion(const CLI::App& program) {
    std::string text =
        "# Completion of orbitwalk in fish.\n"
        "complete -c orbitwalk -n __fish_use_subcommand -f\n";
    for (const CLI::App* command : commandsOf(program))
        text += "complete -c orbitwalk -n __fish_use_subcommand -a " + command->get_name() +
                " -d " + fishQuoted(shortly(command->get_description())) + "\n";
    for (const CLI::Option* option : optionsOf(program))
        text += fishOption("__fish_use_subcommand", *option);
    for (const CLI::App* command : commandsOf(program))
        for (const CLI::Option* option : optionsOf(*command))
            text += fishOption("__fish_seen_subcommand_from " + command->get_name(), *option);
    return text;
}

}  // namespace orbitwalk::tool
