#pragma once

#include <csignal>
#include <utility>
#include <vector>

namespace orbitwalk::tool {

/// How long a call that may block waits at most before it looks for a signal.
inline constexpr int kSignalPollMilliseconds = 100;

/// While it lives, SIGHUP, SIGINT and SIGTERM only set a flag and interrupt the system call that
/// waits (EINTR), so that the command can clean up, and a write beyond the file-size limit or into
/// a closed pipe is an error instead of the end of the process. A signal that was ignored before
/// stays ignored. A signal can also come just before a call that waits: such calls wait
/// kSignalPollMilliseconds at a time and look at received() in between. One at a time in a process,
/// on the main thread.
class SignalGuard {
  public:
    SignalGuard();
    ~SignalGuard();
    SignalGuard(const SignalGuard&) = delete;
    SignalGuard& operator=(const SignalGuard&) = delete;

    /// The signal that has come, 0 for none. From any thread; without a guard it is always 0.
    static int received();
    /// @throws ToolError with the exit code 128 + signal once a signal has come.
    static void check();

  private:
    void replace(int signal, void (*handler)(int));

    std::vector<std::pair<int, struct sigaction>> mFormer;
};

}  // namespace orbitwalk::tool
