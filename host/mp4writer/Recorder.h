#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <mutex>

#include "FrameCounter.h"
#include "media/VideoWriter.h"

namespace orbitwalk::mp4writer {

/// The process's one recording, behind the exported calls. Says its failures in the log and throws
/// none. Any thread, one call at a time.
class Recorder {
  public:
    /// Never destroyed: an exit with a recording open must not pull the encoder from under a thread
    /// that still uses it.
    static Recorder& instance();

    /// @return whether a recording began; a refused one leaves an open recording as it was.
    bool begin(std::FILE* file, const media::EncoderSettings& settings);
    /// Null and failed frames count as returned too, so that nobody waits for them in vain.
    bool encode(const std::uint8_t* frame);
    /// @return whether a recording was open and is complete.
    bool end();
    int waitForFrames(int frames, int timeoutMs) { return mReturned.waitFor(frames, timeoutMs); }

  private:
    Recorder() = default;

    bool encodeOne(const std::uint8_t* frame);
    void sayOnce(const char* reason);

    FrameCounter mReturned;  ///< Synchronises itself.

    std::mutex mLock;  ///< Guards all below.
    std::unique_ptr<media::VideoWriter> mWriter;
    std::size_t mFrameBytes = 0;
    bool mFailed = false;       ///< A write failed: the file will not be complete.
    bool mFailureSaid = false;  ///< The log knows why frames are refused.
};

}  // namespace orbitwalk::mp4writer
