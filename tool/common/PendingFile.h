#pragma once

#include <cstdio>
#include <filesystem>

namespace orbitwalk::tool {

/// A file that appears under its name only when it is complete: it is written under a temporary
/// name beside it, which the destructor removes unless publish was called.
class PendingFile {
  public:
    /// @throws ToolError when the file cannot be created, or the name is that of something other
    /// than a file.
    explicit PendingFile(std::filesystem::path target);
    ~PendingFile();
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    const std::filesystem::path& target() const { return mTarget; }
    /// Open for reading and writing until close.
    std::FILE* stream() const { return mStream; }
    /// Writes out what is buffered. @throws ToolError when anything could not be written.
    void close();
    /// Gives the closed file its name, replacing an older one. @throws ToolError.
    void publish();

  private:
    std::filesystem::path mTarget;
    std::filesystem::path mTemporary;
    std::FILE* mStream = nullptr;
};

}  // namespace orbitwalk::tool
