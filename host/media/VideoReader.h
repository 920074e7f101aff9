#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <vector>

namespace orbitwalk::media {

/// What went wrong with a video, in one line that names the file.
class MediaError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct FrameRate {
    int numerator = 30;
    int denominator = 1;
};

/// Decodes the first video stream of any file that FFmpeg reads, frame by frame in presentation
/// order, without duplicating or dropping any. Frames come as 8-bit planar YUV 4:2:0 (I420),
/// tightly packed; an odd last column or row is cut off. One thread at a time.
class VideoReader {
  public:
    /// @throws MediaError when the file cannot be opened or holds no video that can be decoded.
    explicit VideoReader(const std::filesystem::path& file);
    ~VideoReader();
    VideoReader(VideoReader&&) noexcept;
    VideoReader& operator=(VideoReader&&) noexcept;

    int width() const;   ///< Even, pixels.
    int height() const;  ///< Even, pixels.
    FrameRate frameRate() const;
    std::int64_t expectedFrames() const;  ///< By the container's word; 0 when it does not say.
    int rotationDegrees() const;          ///< Display rotation, clockwise: 0, 90, 180 or 270.

    /// Decodes the next frame into i420 (resized to width * height * 3 / 2).
    /// @return false at the end of the stream. @throws MediaError when the stream is broken.
    bool read(std::vector<std::uint8_t>& i420);

  private:
    struct State;
    std::unique_ptr<State> mState;
};

}  // namespace orbitwalk::media
