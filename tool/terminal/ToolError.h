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

/// What the user asked for cannot be asked for: wrong options or values, found at parsing or after.
class UsageError : public ToolError {
  public:
    explicit UsageError(const std::string& line) : ToolError(line, 2) {}
};

}  // namespace orbitwalk::tool
