#pragma once

#include <stdexcept>
#include <string>

namespace orbitwalk::tool {

/// A failure that ends a command: one clear line for the user. main prints it and exits with the
/// code.
class ToolError : public std::runtime_error {
  public:
    explicit ToolError(const std::string& line, int exitCode = 1)
        : std::runtime_error(line), mExitCode(exitCode) {}

    int exitCode() const { return mExitCode; }

  private:
    int mExitCode;
};

}  // namespace orbitwalk::tool
