#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace test_support {

struct RunOptions {
    std::map<std::string, std::string> environment{};  ///< Added to the test's own.
    std::optional<long> fileSizeLimit{};               ///< Bytes that the tool may write to a file.
    bool fullOutput = false;    ///< stdout is a device without room, and the run's out is empty.
    std::string signalAfter{};  ///< Text on stderr upon which a signal is sent.
    int signal = 0;             ///< SIGPIPE comes of closing stderr.
};

struct ToolRun {
    int exitCode = -1;  ///< -1 when a signal ended the tool.
    std::string out;
    std::string err;
};

/// Runs the built `orbitwalk` with the arguments to its end, in the test's working directory.
ToolRun runTool(const std::vector<std::string>& arguments, const RunOptions& options = {});

/// Expects that the tool refused: an exit code, one line on stderr that says why, nothing on
/// stdout.
void expectRefusal(const ToolRun& run, const std::string& reason, int exitCode = 1);

/// Where the built tool is, for programs that run it.
std::string toolPath();

/// The same for another program. @param program  its path.
ToolRun runProgram(const std::string& program, const std::vector<std::string>& arguments,
                   const RunOptions& options = {});

}  // namespace test_support
