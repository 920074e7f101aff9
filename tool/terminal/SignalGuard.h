#pragma once

#include <condition_variable>
#include <csignal>
#include <filesystem>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace orbitwalk::tool {

/// How long a call that may block waits at most before it looks for a signal.
inline constexpr int kSignalPollMilliseconds = 100;

/// While it lives, SIGHUP, SIGINT and SIGTERM only set a flag and interrupt the system call that
/// waits (EINTR), so that the command can clean up, and a write beyond the file-size limit or into
/// a closed pipe is an error instead of the end of the process. A signal that was ignored before
/// stays ignored. A signal can also come just before a call that waits: such calls wait
/// kSignalPollMilliseconds at a time and look at received() in between.
///
/// Work that cannot look, such as a library's encoding of a large picture, is abandoned: where the
/// guard still lives about half a second after the signal, a thread of its own removes the
/// Unfinished paths, says that the command was interrupted and ends the process with the exit code
/// 128 + signal. One at a time in a process, on the main thread.
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
    void watch(std::stop_token ended);

    std::vector<std::pair<int, struct sigaction>> mFormer;
    std::mutex mMutex;
    std::condition_variable_any mEnded;
    std::jthread mWatch;
};

/// A file, or a directory with all that it holds, which does not outlive an abandoned process.
/// Those that were named last go first; what is not there is left out. From any thread.
class Unfinished {
  public:
    enum class Removed { WithContent, IfEmpty };
    explicit Unfinished(const std::filesystem::path& path, Removed removed = Removed::IfEmpty);
    ~Unfinished();
    Unfinished(Unfinished&& other) noexcept;
    Unfinished& operator=(Unfinished&& other) noexcept;

    /// While it lives the process is not abandoned: for steps that belong together and are short.
    [[nodiscard]] static std::unique_lock<std::mutex> keepWhole();
    /// The path has got its own name, and stays. A process that has nothing but such paths is not
    /// abandoned any more: it would tell that nothing was kept.
    /// @param whole  from keepWhole.
    void keep(const std::unique_lock<std::mutex>& whole);

  private:
    int mNumber;
};

}  // namespace orbitwalk::tool
