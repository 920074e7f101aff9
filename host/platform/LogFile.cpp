#include "LogFile.h"

#include <fcntl.h>
#include <poll.h>
#include <spdlog/details/os.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <string_view>
#include <system_error>

#include "LogConfig.h"

namespace orbitwalk::platform {

namespace {

/// The priority's letter; spdlog's own level names differ from the log's.
class PriorityFlag final : public spdlog::custom_flag_formatter {
  public:
    void format(const spdlog::details::log_msg& line, const std::tm&,
                spdlog::memory_buf_t& out) override {
        out.push_back(priorityLetter(static_cast<int>(line.level) + kPriorityOfTrace));
    }
    std::unique_ptr<custom_flag_formatter> clone() const override {
        return std::make_unique<PriorityFlag>();
    }

    static constexpr int kPriorityOfTrace = 2;
};

/// A file, pipe or device that is appended to a line at a time, each at once. Never blocks: a pipe
/// that nobody reads cannot be opened, and one whose reader does not keep up loses lines.
class AppendSink final : public spdlog::sinks::base_sink<std::mutex> {
  public:
    explicit AppendSink(const std::string& path) {
        spdlog::details::os::create_dir(spdlog::details::os::dir_name(path));
        mFile = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK | O_CLOEXEC, 0666);
        if (mFile < 0)
            fail(errno);
    }
    ~AppendSink() override { close(mFile); }
    AppendSink(const AppendSink&) = delete;
    AppendSink& operator=(const AppendSink&) = delete;

  protected:
    void sink_it_(const spdlog::details::log_msg& message) override {
        spdlog::memory_buf_t line;
        formatter_->format(message, line);
        std::string_view rest(line.data(), line.size());
        while (!rest.empty()) {
            const ssize_t written = ::write(mFile, rest.data(), rest.size());
            if (written >= 0)
                rest.remove_prefix(static_cast<std::size_t>(written));
            else if (errno != EINTR && !(errno == EAGAIN && waitForRoom()))
                fail(errno);
        }
    }
    void flush_() override {}

  private:
    static constexpr int kPatienceMilliseconds = 50;

    bool waitForRoom() const {
        pollfd waiting{mFile, POLLOUT, 0};
        const bool room = poll(&waiting, 1, kPatienceMilliseconds) > 0;
        errno = EAGAIN;
        return room;
    }
    [[noreturn]] static void fail(int error) {
        throw std::system_error(error, std::generic_category());
    }

    int mFile = -1;
};

/// Date, time, process, thread, priority, tag, text: the columns that log viewers know.
std::unique_ptr<spdlog::formatter> lineFormat() {
    auto format = std::make_unique<spdlog::pattern_formatter>();
    format->add_flag<PriorityFlag>('*').set_pattern("%m-%d %H:%M:%S.%e %5P %5t %* %n: %v");
    return format;
}

}  // namespace

LogFile::LogFile(const char* path) : mPath(path ? path : "") {
    try {
        if (mPath.empty())
            mSink = std::make_shared<spdlog::sinks::stderr_sink_mt>();
        else
            mSink = std::make_shared<AppendSink>(mPath);
        mSink->set_formatter(lineFormat());
    } catch (const std::exception& error) {
        complain(error.what());
    }
}

bool LogFile::write(int priority, const char* tag, const char* text) {
    if (!mSink)
        return false;
    try {
        const auto level = static_cast<spdlog::level::level_enum>(clampPriority(priority) -
                                                                  PriorityFlag::kPriorityOfTrace);
        mSink->log(spdlog::details::log_msg(tag, level, text));
        mSink->flush();
        return true;
    } catch (const std::exception& error) {
        complain(error.what());
        return false;
    }
}

void LogFile::complain(const char* reason) {
    std::call_once(mComplained, [&] {
        std::fprintf(stderr, "orbitwalk: cannot write the log file %s: %s\n", mPath.c_str(),
                     reason);
    });
}

}  // namespace orbitwalk::platform
