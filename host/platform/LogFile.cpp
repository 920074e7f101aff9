#include "LogFile.h"

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <cstdio>
#include <exception>

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
            mSink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(mPath);
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
