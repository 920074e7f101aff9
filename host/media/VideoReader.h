#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "media/MediaTypes.h"

namespace orbitwalk::media {

/// Decodes the main video stream of any local file that FFmpeg reads, frame by frame in
/// presentation order, without duplicating or dropping any, however uneven their timestamps. Frames
/// come as 8-bit planar YUV 4:2:0 (I420) of video range, tightly packed, not turned; an odd last
/// column or row is cut off. Pictures too damaged to decode are left out, and a file that was cut
/// off ends after the last picture that decodes. One thread at a time.
class VideoReader {
  public:
    /// Decodes the first picture, so that sizes are those of real pictures.
    /// @throws MediaError when the file cannot be opened or holds no video that can be decoded.
    explicit VideoReader(const std::filesystem::path& file);
    ~VideoReader();
    VideoReader(VideoReader&&) noexcept;
    VideoReader& operator=(VideoReader&&) noexcept;

    int width() const;       ///< Even, pixels.
    int height() const;      ///< Even, pixels.
    bool isTrimmed() const;  ///< An odd last column or row is cut off.
    FrameRate frameRate() const;
    /// By the container's word (its count, or duration times rate); 0 when it does not say.
    std::int64_t expectedFrames() const;
    int rotationDegrees() const;  ///< Display rotation, clockwise: 0, 90, 180 or 270.

    /// Decodes the next frame into i420 (resized to width * height * 3 / 2).
    /// @return false at the end of the stream.
    /// @throws MediaError when the file cannot be read on, or its picture size changes half-way.
    bool read(std::vector<std::uint8_t>& i420);

  private:
    struct State;
    std::unique_ptr<State> mState;
};

}  // namespace orbitwalk::media
