#include "manual/Manual.h"

namespace orbitwalk::tool {

namespace {

std::string roff(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\\')
            escaped += "\\e";
        else if (c == '-')
            escaped += "\\-";
        else
            escaped += c;
    }
    const bool looksLikeARequest = text.starts_with('.') || text.starts_with('\'');
    return looksLikeARequest ? "\\&" + escaped : escaped;
}

std::string bold(const std::string& text) {
    return "\\fB" + roff(text) + "\\fR";
}

std::string italic(const std::string& text) {
    return "\\fI" + roff(text) + "\\fR";
}

/// "a and b", each a name of an option.
std::string namesOf(const std::set<CLI::Option*>& options) {
    std::string names;
    for (const CLI::Option* option : options)
        names += (names.empty() ? "" : " and ") + bold(describe(*option).names.back());
    return names;
}

std::string entry(const CLI::Option& option) {
    const Argument argument = describe(option);
    std::string text = ".TP\n";
    for (const std::string& name : argument.names)
        text += (&name == &argument.names.front() ? "" : ", ") +
                (argument.isPositional ? italic(name) : bold(name));
    if (!argument.isPositional && !argument.value.empty())
        text += " " + italic(argument.value);
    text += "\n" + roff(option.get_description()) + ".";
    if (option.get_required() && !argument.isPositional)
        text += " Required.";
    if (!option.get_default_str().empty())
        text += " Default: " + roff(option.get_default_str()) + ".";
    if (!option.get_needs().empty())
        text += " Only with " + namesOf(option.get_needs()) + ".";
    if (!option.get_excludes().empty())
        text += " Not with " + namesOf(option.get_excludes()) + ".";
    return text + "\n";
}

std::string entries(const char* title, const std::vector<const CLI::Option*>& options) {
    std::string text = options.empty() ? "" : std::string(".SH ") + title + "\n";
    for (const CLI::Option* option : options)
        text += entry(*option);
    return text;
}

std::string head(const CLI::App& program, const std::string& name, const std::string& description) {
    return ".TH " + roff(name) + " 1 \"\" \"Orbitwalk " + program.version() +
           "\" \"User Commands\"\n.SH NAME\n" + roff(name) + " \\- " + roff(shortly(description)) +
           "\n.SH SYNOPSIS\n";
}

constexpr char kExitStatus[] =
    ".SH EXIT STATUS\n"
    "0 where the command did what was asked, 2 where its options cannot be taken, 128 and the "
    "number of the signal\nwhere one ended it, 1 where it failed otherwise. A failure is one line "
    "on the standard error.\n";

std::string pageName(const CLI::App& program, const CLI::App& command) {
    return program.get_name() + "-" + command.get_name();
}

}  // namespace

std::string programPage(const CLI::App& program) {
    std::string text = head(program, program.get_name(), program.get_description());
    text += bold(program.get_name()) + " " + italic("COMMAND") + " [" + italic("OPTIONS") +
            "]\n.SH COMMANDS\n";
    std::string pages;
    for (const CLI::App* command : commandsOf(program)) {
        const std::string page = pageName(program, *command);
        text += ".TP\n" + bold(command->get_name()) + "\n" + roff(command->get_description()) +
                ". See " + bold(page) + "(1).\n";
        pages += (pages.empty() ? "" : ",\n") + bold(page) + "(1)";
    }
    return text + entries("OPTIONS", optionsOf(program)) + kExitStatus + ".SH SEE ALSO\n" + pages +
           "\n";
}

std::string commandPage(const CLI::App& program, const CLI::App& command) {
    std::string text = head(program, pageName(program, command), command.get_description()) +
                       bold(program.get_name()) + " " + bold(command.get_name()) + " [" +
                       italic("OPTIONS") + "]";
    for (const CLI::Option* positional : positionalsOf(command)) {
        const std::string name = italic(describe(*positional).names.front());
        text += positional->get_required() ? " " + name : " [" + name + "]";
    }
    return text + "\n.SH DESCRIPTION\n" + roff(command.get_description()) + ".\n" +
           entries("ARGUMENTS", positionalsOf(command)) + entries("OPTIONS", optionsOf(command)) +
           kExitStatus + ".SH SEE ALSO\n" + bold(program.get_name()) + "(1)\n";
}

}  // namespace orbitwalk::tool
