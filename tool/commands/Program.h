#pragma once

namespace orbitwalk::tool {

/// A command that has said what went wrong and ends with an exit status.
struct CommandFailed {
    int status;
};

/// Runs a command line to its end, the program's name first. Errors are printed, one line each.
/// @return the exit status. On the main thread.
int runProgram(int argc, char** argv);

}  // namespace orbitwalk::tool
