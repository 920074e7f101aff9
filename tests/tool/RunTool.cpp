#include "tool/RunTool.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

namespace test_support {
namespace {

struct Pipe {
    Pipe() {
        if (pipe(ends.data()) != 0)
            throw std::runtime_error("no pipe");
    }
    std::array<int, 2> ends{};
};

[[noreturn]] void become(std::string program, const std::vector<std::string>& arguments,
                         const RunOptions& options, const Pipe& out, const Pipe& err) {
    dup2(out.ends[1], STDOUT_FILENO);
    dup2(err.ends[1], STDERR_FILENO);
    if (options.fullOutput)
        dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
    for (const int end : {out.ends[0], out.ends[1], err.ends[0], err.ends[1]})
        close(end);
    for (const auto& [name, value] : options.environment)
        setenv(name.c_str(), value.c_str(), 1);
    if (options.fileSizeLimit) {
        const rlimit limit{static_cast<rlim_t>(*options.fileSizeLimit),
                           static_cast<rlim_t>(*options.fileSizeLimit)};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    std::vector<std::string> copies(arguments);
    std::vector<char*> argv{program.data()};
    for (std::string& argument : copies)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
    _exit(127);
}

/// Reads what there is; false at the end of the pipe.
bool drain(int end, std::string& text) {
    std::array<char, 65536> bytes;
    const ssize_t count = read(end, bytes.data(), bytes.size());
    if (count > 0)
        text.append(bytes.data(), static_cast<std::size_t>(count));
    return count > 0;
}

void end(pollfd& source) {
    close(source.fd);
    source.fd = -1;
}

}  // namespace

void expectRefusal(const ToolRun& run, const std::string& reason, int exitCode) {
    EXPECT_EQ(run.exitCode, exitCode) << reason;
    EXPECT_THAT(run.err, testing::StartsWith("orbitwalk: "));
    EXPECT_THAT(run.err, testing::HasSubstr(reason));
    EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
    EXPECT_EQ(run.out, "") << reason;
}

std::string toolPath() {
    return ORBITWALK_TOOL;
}

ToolRun runTool(const std::vector<std::string>& arguments, const RunOptions& options) {
    return runProgram(ORBITWALK_TOOL, arguments, options);
}

ToolRun runProgram(const std::string& program, const std::vector<std::string>& arguments,
                   const RunOptions& options) {
    Pipe out;
    Pipe err;
    const pid_t child = fork();
    if (child == 0)
        become(program, arguments, options, out, err);
    close(out.ends[1]);
    close(err.ends[1]);
    ToolRun run;
    bool signalled = options.signal == 0;
    std::array<pollfd, 2> sources{{{out.ends[0], POLLIN, 0}, {err.ends[0], POLLIN, 0}}};
    while (sources[0].fd >= 0 || sources[1].fd >= 0) {
        poll(sources.data(), sources.size(), -1);
        for (pollfd& source : sources) {
            const bool isOut = &source == sources.data();
            if (source.revents && !drain(source.fd, isOut ? run.out : run.err))
                end(source);
        }
        if (!signalled && run.err.find(options.signalAfter) != std::string::npos) {
            signalled = true;
            if (options.signal == SIGPIPE)
                end(sources[1]);
            else
                kill(child, options.signal);
        }
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status))
        run.exitCode = WEXITSTATUS(status);
    return run;
}

}  // namespace test_support
