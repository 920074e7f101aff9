#pragma once

#include <cstdint>
#include <cstdio>

#include "media/AvHandles.h"

namespace orbitwalk::media {

/// Lets libavformat write to a stdio stream, which stays the caller's. Positions count from where
/// the stream stood at construction.
class StreamOutput {
  public:
    /// @throws MediaError when the stream should seek and cannot.
    StreamOutput(std::FILE* stream, bool seekable);
    ~StreamOutput();
    StreamOutput(const StreamOutput&) = delete;
    StreamOutput& operator=(const StreamOutput&) = delete;

    AVIOContext* io() { return mIo; }

    /// Hands everything on to the operating system. @throws MediaError when that, or any earlier
    /// write, failed.
    void flush();

  private:
    static int writeBytes(void* self, std::uint8_t* bytes, int size);
    static std::int64_t seekTo(void* self, std::int64_t offset, int whence);

    std::FILE* mStream;
    std::int64_t mStart = 0;
    AVIOContext* mIo = nullptr;
};

}  // namespace orbitwalk::media
