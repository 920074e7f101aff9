#include "batch/ClipProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "terminal/ToolError.h"

extern char** environ;

namespace orbitwalk::tool {

namespace {

constexpr std::size_t kKept = 64 << 10;
/// What a command needs to clean up, and less than what a signal leaves the parent.
constexpr int kPatienceMilliseconds = 300;

[[noreturn]] void fail(int error) {
    throw ToolError(std::string("cannot start a process: ") + std::strerror(error));
}

class SpawnSettings {
  public:
    SpawnSettings(int errors, const std::filesystem::path& folder) {
        posix_spawn_file_actions_init(&mFiles);
        posix_spawn_file_actions_addchdir_np(&mFiles, folder.c_str());
        posix_spawn_file_actions_addopen(&mFiles, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&mFiles, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_adddup2(&mFiles, errors, STDERR_FILENO);
        posix_spawnattr_init(&mAttributes);
        // The parent's guard ignores these two; a child makes up its own mind.
        sigset_t defaults;
        sigemptyset(&defaults);
        sigaddset(&defaults, SIGPIPE);
        sigaddset(&defaults, SIGXFSZ);
        posix_spawnattr_setsigdefault(&mAttributes, &defaults);
        // A group of its own: what the terminal interrupts is the parent, which ends its children.
        posix_spawnattr_setpgroup(&mAttributes, 0);
        posix_spawnattr_setflags(&mAttributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&mFiles);
        posix_spawnattr_destroy(&mAttributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    const posix_spawn_file_actions_t* files() const { return &mFiles; }
    const posix_spawnattr_t* attributes() const { return &mAttributes; }

  private:
    posix_spawn_file_actions_t mFiles{};
    posix_spawnattr_t mAttributes{};
};

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments,
                           const std::filesystem::path& folder) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        fail(errno);
    mPipe = Descriptor(ends[0]);
    const Descriptor errors(ends[1]);
    fcntl(mPipe.get(), F_SETFL, O_NONBLOCK);
    std::string name = "orbitwalk";
    std::vector<std::string> copies = arguments;
    std::vector<char*> argv{name.data()};
    for (std::string& argument : copies)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    const SpawnSettings settings(errors.get(), folder);
    if (const int error = posix_spawn(&mProcess, "/proc/self/exe", settings.files(),
                                      settings.attributes(), argv.data(), environ);
        error != 0)
        fail(error);
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : mProcess(std::exchange(other.mProcess, -1)),
      mPipe(std::move(other.mPipe)),
      mErrors(std::move(other.mErrors)),
      mStatus(other.mStatus) {}

ChildProcess::~ChildProcess() {
    if (mProcess < 0)
        return;
    terminate();
    if (waitFor(kPatienceMilliseconds))
        return;
    kill(mProcess, SIGKILL);
    waitpid(mProcess, nullptr, 0);
}

void ChildProcess::terminate() const {
    if (mProcess >= 0)
        kill(mProcess, SIGTERM);
}

bool ChildProcess::waitFor(int milliseconds) {
    constexpr int step = 10;
    for (int waited = 0; !poll() && waited < milliseconds; waited += step)
        ::poll(nullptr, 0, step);
    return mProcess < 0;
}

bool ChildProcess::poll() {
    readErrors();
    int status = 0;
    if (mProcess < 0 || waitpid(mProcess, &status, WNOHANG) <= 0)
        return mProcess < 0;
    mProcess = -1;
    readErrors();
    mStatus = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    return true;
}

void ChildProcess::readErrors() {
    std::array<char, 4096> bytes;
    for (ssize_t count; (count = read(mPipe.get(), bytes.data(), bytes.size())) > 0;)
        mErrors.append(bytes.data(), static_cast<std::size_t>(count));
    if (mErrors.size() > kKept)
        mErrors.erase(0, mErrors.size() - kKept);
}

bool endWithParent(pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    return getppid() == parent;
}

}  // namespace orbitwalk::tool
