#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>

#include "media/EncoderSettings.h"
#include "media/MediaTypes.h"

namespace orbitwalk::media {

/// The comment in every file that a VideoWriter writes, by which it can be known again.
inline constexpr char kMadeWith[] = "Made with Orbitwalk";

/// Encodes I420 frames of video range at a constant rate as H.264 in an MP4 on a stream that stays
/// the caller's: libx264 where FFmpeg has it, else the H.264 (or failing that the MPEG-4) encoder
/// that libavcodec offers. The same frames give the same bytes. One thread at a time.
///
/// Fragmented, a frame leaves the encoder at once, a fragment is on the stream and flushed when the
/// next key frame comes, and nothing is ever sought: what stands there plays up to the last whole
/// fragment, whatever happens later. Otherwise the file plays only after finish.
///
/// A failed write sets the stream's error indicator. SIGPIPE is left as the caller has set it: only
/// where it is ignored does a closed pipe end in a MediaError.
class VideoWriter {
  public:
    /// Opens the encoder and writes the file's header, from where the stream stands. The stream
    /// must be seekable unless fragmented.
    /// @throws MediaError: bad settings, no encoder, a failed write.
    VideoWriter(std::FILE* stream, const EncoderSettings& settings);
    /// Abandons a recording that was not finished.
    ~VideoWriter();
    VideoWriter(const VideoWriter&) = delete;
    VideoWriter& operator=(const VideoWriter&) = delete;

    /// Encodes one frame of width * height * 3 / 2 bytes, which are not kept.
    /// @throws MediaError: a frame of another size (the recording goes on); a failed encode or
    /// write, after which every further call fails with the same words.
    void write(std::span<const std::uint8_t> i420);
    /// Writes what the encoder still holds and the file's trailer, and flushes the stream. The last
    /// call. @throws MediaError, also when an earlier write failed: the file is not complete.
    void finish();

  private:
    struct State;
    std::unique_ptr<State> mState;
};

}  // namespace orbitwalk::media
