#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "commands/Commands.h"
#include "manual/Manual.h"

namespace {

using namespace orbitwalk::tool;

void write(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path);
    file.exceptions(std::ios::failbit | std::ios::badbit);
    file << text << std::flush;
}

}  // namespace

/// orbitwalk_manual DIR: writes DIR/man1 and DIR/completions.
int main(int argc, char** argv) try {
    if (argc != 2)
        return 2;
    const std::filesystem::path directory = argv[1];
    const auto program = commandLine();
    write(directory / "man1/orbitwalk.1", programPage(*program));
    for (const CLI::App* command : commandsOf(*program))
        write(directory / "man1" / ("orbitwalk-" + command->get_name() + ".1"),
              commandPage(*program, *command));
    write(directory / "completions/orbitwalk", bashCompletion(*program));
    write(directory / "completions/_orbitwalk", zshCompletion(*program));
    write(directory / "completions/orbitwalk.fish", fishCompletion(*program));
} catch (const std::exception& error) {
    std::cerr << "orbitwalk_manual: " << error.what() << '\n';
    return 1;
}
