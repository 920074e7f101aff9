#include "terminal/SignalGuard.h"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>

#include "terminal/Print.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

/// Until a process is abandoned: what commands that look for signals need to clean up.
constexpr std::chrono::milliseconds kPatience{500};

std::atomic<int> caughtSignal = 0;
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler writes it");

extern "C" void noteSignal(int signal) {
    caughtSignal = signal;
}

ToolError interruption(int signal) {
    return ToolError("interrupted (" + std::string(strsignal(signal)) + "), nothing was kept",
                     128 + signal);
}

struct UnfinishedPaths {
    struct Entry {
        std::filesystem::path path;
        Unfinished::Removed removed;
    };
    std::mutex mutex;
    std::map<int, Entry> entries;  ///< Guarded by mutex.
    int next = 1;                  ///< Guarded by mutex.
    bool kept = false;             ///< Guarded by mutex. Some have got their names.
};

UnfinishedPaths& unfinishedPaths() {
    static UnfinishedPaths paths;
    return paths;
}

void abandon(int signal) {
    UnfinishedPaths& paths = unfinishedPaths();
    const std::lock_guard lock(paths.mutex);
    if (paths.kept && paths.entries.empty())
        return;
    std::error_code ignored;
    for (auto entry = paths.entries.rbegin(); entry != paths.entries.rend(); ++entry)
        if (entry->second.removed == Unfinished::Removed::WithContent)
            std::filesystem::remove_all(entry->second.path, ignored);
        else
            std::filesystem::remove(entry->second.path, ignored);
    if (isatty(STDERR_FILENO))
        std::fputs("\r\033[K", stderr);  // A line of progress that nobody clears any more.
    const ToolError error = interruption(signal);
    printError(error.what());
    _exit(error.exitCode());
}

/// Threads that are made while it lives take no signals: those are for the main thread, whose
/// waiting calls they interrupt.
class BlockedSignals {
  public:
    BlockedSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &mFormer);
    }
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &mFormer, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

  private:
    sigset_t mFormer{};
};

}  // namespace

SignalGuard::SignalGuard() {
    caughtSignal = 0;
    for (const int signal : {SIGHUP, SIGINT, SIGTERM})
        replace(signal, &noteSignal);
    for (const int signal : {SIGPIPE, SIGXFSZ})
        replace(signal, SIG_IGN);
    const BlockedSignals blocked;
    mWatch = std::jthread([this](std::stop_token ended) { watch(std::move(ended)); });
}

SignalGuard::~SignalGuard() {
    mWatch = {};
    {
        const std::lock_guard lock(unfinishedPaths().mutex);
        unfinishedPaths().kept = false;
    }
    for (const auto& [signal, action] : mFormer)
        sigaction(signal, &action, nullptr);
    caughtSignal = 0;
}

void SignalGuard::watch(std::stop_token ended) {
    std::unique_lock lock(mMutex);
    const auto wait = [&](std::chrono::milliseconds time) {
        mEnded.wait_for(lock, ended, time, [] { return false; });
    };
    while (received() == 0 && !ended.stop_requested())
        wait(std::chrono::milliseconds(kSignalPollMilliseconds));
    wait(kPatience);
    if (!ended.stop_requested())
        abandon(received());
}

void SignalGuard::replace(int signal, void (*handler)(int)) {
    struct sigaction former {};
    sigaction(signal, nullptr, &former);
    if (former.sa_handler == SIG_IGN)
        return;
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
    mFormer.emplace_back(signal, former);
}

int SignalGuard::received() {
    return caughtSignal;
}

void SignalGuard::check() {
    if (const int signal = received(); signal != 0)
        throw interruption(signal);
}

Unfinished::Unfinished(const std::filesystem::path& path, Removed removed) {
    UnfinishedPaths& paths = unfinishedPaths();
    const std::lock_guard lock(paths.mutex);
    mNumber = paths.next++;
    paths.entries[mNumber] = {path, removed};
}

Unfinished::~Unfinished() {
    UnfinishedPaths& paths = unfinishedPaths();
    const std::lock_guard lock(paths.mutex);
    paths.entries.erase(mNumber);
}

Unfinished::Unfinished(Unfinished&& other) noexcept : mNumber(std::exchange(other.mNumber, 0)) {}

Unfinished& Unfinished::operator=(Unfinished&& other) noexcept {
    std::swap(mNumber, other.mNumber);
    return *this;
}

std::unique_lock<std::mutex> Unfinished::keepWhole() {
    return std::unique_lock(unfinishedPaths().mutex);
}

void Unfinished::keep(const std::unique_lock<std::mutex>& /*whole*/) {
    unfinishedPaths().entries.erase(std::exchange(mNumber, 0));
    unfinishedPaths().kept = true;
}

}  // namespace orbitwalk::tool
