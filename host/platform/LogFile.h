#pragma once

#include <spdlog/sinks/sink.h>

#include <memory>
#include <mutex>
#include <string>

namespace orbitwalk::platform {

/// Where the lines go: stderr, or a file that is appended to and written with every line. A file
/// that cannot be written, such as a pipe without a reader, is said once on stderr; its lines are
/// dropped. Any thread.
class LogFile {
  public:
    /// @param path  null or empty for stderr
    explicit LogFile(const char* path);

    /// @return whether the line was written.
    bool write(int priority, const char* tag, const char* text);

  private:
    void complain(const char* reason);

    std::string mPath;
    std::shared_ptr<spdlog::sinks::sink> mSink;  ///< Null when the file cannot be opened.
    std::once_flag mComplained;
};

}  // namespace orbitwalk::platform
