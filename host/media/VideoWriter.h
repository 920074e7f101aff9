#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>

#include "media/VideoReader.h"

namespace orbitwalk::media {

struct EncoderSettings {
    int width = 0;   ///< Even, pixels.
    int height = 0;  ///< Even, pixels.
    FrameRate frameRate;
    std::int64_t bitRate = 0;  ///< Bits per second; 0: constant quality instead.
    int quality = 18;          ///< Constant rate factor, used when bitRate is 0; lower is better.
    int keyFrameInterval = 15;
    int speed = 7;            ///< 0 (smallest file) to 9 (fastest).
    int threads = 0;          ///< 0: as many as the machine has cores.
    bool fragmented = false;  ///< Complete fragments as it goes, for streams that cannot seek.
};

/// Encodes I420 frames at a constant rate as H.264 in an MP4 on a stream that stays the caller's:
/// libx264 where FFmpeg has it, else the H.264 (or failing that the MPEG-4) encoder that libavcodec
/// offers. One thread at a time.
class VideoWriter {
  public:
    /// Opens the encoder and writes the file's header. The stream must be seekable unless
    /// fragmented.
    /// @throws MediaError: bad settings, no encoder, a failed write.
    VideoWriter(std::FILE* stream, const EncoderSettings& settings);
    /// Abandons a recording that was not finished.
    ~VideoWriter();
    VideoWriter(const VideoWriter&) = delete;
    VideoWriter& operator=(const VideoWriter&) = delete;

    /// Encodes one frame of width * height * 3 / 2 bytes. @throws MediaError.
    void write(std::span<const std::uint8_t> i420);
    /// Writes what the encoder still holds and the file's trailer, and flushes the stream. @throws
    /// MediaError.
    void finish();

  private:
    struct State;
    std::unique_ptr<State> mState;
};

}  // namespace orbitwalk::media
