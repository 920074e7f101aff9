#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "media/InputFile.h"
#include "media/MediaTypes.h"

namespace orbitwalk::media {

/// What of a file is read, and how.
struct ReadOptions {
    /// Pictures that are shown earlier than this after the first one are left out.
    std::chrono::microseconds start{0};
    /// Pictures that are shown this long after start, or later, are left out.
    std::optional<std::chrono::microseconds> duration{};
    /// Ends calls that wait for the file, with a MediaError.
    Interrupted interrupted{};
};

/// What came of a file, within what was asked of it and as far as it was read.
struct Completeness {
    std::int64_t read = 0;      ///< Pictures given.
    std::int64_t expected = 0;  ///< Pictures that a whole file would have given.
    std::int64_t damaged = 0;   ///< Pictures given although parts of them could not be decoded.

    bool isComplete() const { return read >= expected && damaged == 0; }
};

struct RateRange {
    double slowest = 0;  ///< Frames a second.
    double fastest = 0;
};

/// Decodes the main video stream of any local file that FFmpeg reads, frame by frame in
/// presentation order, without duplicating or dropping any, however uneven their timestamps. Frames
/// come as 8-bit planar YUV 4:2:0 (I420) of video range, tightly packed, not turned; an odd last
/// column or row is cut off, HDR and wide gamut are brought into BT.709's, and other matrices into
/// that of the size (see colourMatrixOf). Pictures too damaged
/// to decode are left out, and a file that was cut off ends after the last picture that decodes:
/// completeness tells. One thread at a time.
class VideoReader {
  public:
    /// Decodes the first picture, so that sizes are those of real pictures.
    /// @throws MediaError when the file cannot be opened or holds no video that can be decoded.
    explicit VideoReader(const std::filesystem::path& file, ReadOptions options = {});
    ~VideoReader();
    VideoReader(VideoReader&&) noexcept;
    VideoReader& operator=(VideoReader&&) noexcept;

    int width() const;       ///< Even, pixels.
    int height() const;      ///< Even, pixels.
    bool isTrimmed() const;  ///< An odd last column or row is cut off.
    FrameRate frameRate() const;
    /// By the container's word (its count, or duration times rate), of the part that is read; 0
    /// when it does not say.
    std::int64_t expectedFrames() const;
    int rotationDegrees() const;  ///< Display rotation, clockwise: 0, 90, 180 or 270.
    bool hasAudio() const;
    double pixelAspect() const;  ///< Width of a pixel over its height.
    bool isWideColour() const;   ///< HDR or wider than BT.709, in the file.

    /// Decodes the next frame into i420 (resized to width * height * 3 / 2).
    /// @return false at the end of the stream.
    /// @throws MediaError when the file cannot be read on, or its picture size changes half-way.
    bool read(std::vector<std::uint8_t>& i420);

    /// Ends a read that waits for the file on another thread, and later ones that would, with a
    /// MediaError.
    void interrupt();

    Completeness completeness() const;
    /// The rates by the timestamps of the frames read; none while they are even, but for rounding.
    std::optional<RateRange> variableRate() const;

  private:
    struct State;
    std::unique_ptr<State> mState;
};

/// A span of time as FFmpeg's tools take it: seconds, or [HH:]MM:SS, each with or without a
/// fraction, or a number with the unit s, ms or us. @return none for other text.
std::optional<std::chrono::microseconds> parseTime(const std::string& text);

}  // namespace orbitwalk::media
