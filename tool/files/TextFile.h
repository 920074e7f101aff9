#pragma once

#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <utility>

namespace orbitwalk::tool {

/// An open file, closed at the end; false when it could not be opened.
class Descriptor {
  public:
    explicit Descriptor(int file = -1) : mFile(file) {}
    ~Descriptor() {
        if (mFile >= 0)
            close(mFile);
    }
    Descriptor(Descriptor&& other) noexcept : mFile(std::exchange(other.mFile, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(mFile, other.mFile);
        return *this;
    }

    int get() const { return mFile; }
    explicit operator bool() const { return mFile >= 0; }

  private:
    int mFile;
};

inline constexpr std::size_t kTextFileLimit = 64 << 20;

/// The content of a file, which may be a pipe: it is waited for, until a signal comes (see
/// SignalGuard). No byte beyond the limit is read.
/// @throws ToolError with the file's name and the reason; with the signal's exit code.
std::string readFileUpTo(const std::filesystem::path& file, std::size_t limit);

/// The whole content of a file; an empty one is empty text.
/// @throws ToolError as readFileUpTo, and for a file with more bytes than the limit.
std::string readTextFile(const std::filesystem::path& file, std::size_t limit = kTextFileLimit);

}  // namespace orbitwalk::tool
