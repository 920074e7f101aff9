#pragma once

#include <filesystem>
#include <functional>

#include "media/AvHandles.h"

namespace orbitwalk::media {

/// Asked from time to time while a call waits for a file's bytes; true ends the call.
using Interrupted = std::function<bool()>;

/// A file opened as a libav container. A pipe or a device is opened without waiting for its other
/// end, so that the wait for its first bytes can be interrupted as well. One thread.
class InputFile {
  public:
    InputFile() = default;
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile();

    /// Opens the file and reads what it says of its streams. Once.
    /// @return a negative libav result when that fails.
    int open(const std::filesystem::path& file, Interrupted interrupted);

    AVFormatContext& container() const { return *mContainer; }

  private:
    int openPipe(const std::filesystem::path& file);

    Interrupted mInterrupted;
    int mPipe = -1;
    InputPtr mContainer;
};

}  // namespace orbitwalk::media
