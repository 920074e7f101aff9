#pragma once

#include <csignal>
#include <utility>
#include <vector>

namespace orbitwalk::tool {

/// While it lives, SIGHUP, SIGINT and SIGTERM only set a flag, so that the command can clean up,
/// and a write beyond the file-size limit or into a closed pipe is an error instead of the end of
/// the process. A signal that was ignored before stays ignored. One at a time in a process, on the
/// main thread.
class SignalGuard {
  public:
    SignalGuard();
    ~SignalGuard();
    SignalGuard(const SignalGuard&) = delete;
    SignalGuard& operator=(const SignalGuard&) = delete;

    /// @throws ToolError with the exit code 128 + signal once a signal has come.
    void check() const;

  private:
    void replace(int signal, void (*handler)(int));

    std::vector<std::pair<int, struct sigaction>> mFormer;
};

}  // namespace orbitwalk::tool
