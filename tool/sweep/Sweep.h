#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <opencv2/core/types.hpp>
#include <optional>
#include <vector>

#include "media/VideoReader.h"
#include "orbitwalk/RecordReader.h"
#include "sweep/Playlist.h"

namespace orbitwalk::tool {

/// What `orbitwalk capture` left in a directory.
struct Sweep {
    std::filesystem::path video;
    std::filesystem::path path;  ///< The measured path, CSV. Not looked at here.
    RecordReader record;

    cv::Size size() const { return {record.width(), record.height()}; }
};

/// Opens the record. @throws ToolError when it cannot be read, is none or renders no frame.
Sweep openSweep(const std::filesystem::path& directory);

/// @throws ToolError when a video's size is not the one that its record says.
void requireSize(const std::filesystem::path& video, cv::Size size, cv::Size recorded);
/// @throws ToolError when a video's number of frames is not the one that its record says.
void requireFrameCount(const std::filesystem::path& video, int frames, int recorded);

/// I420, of the size of the record; shared among the shots that show it.
using Frame = std::shared_ptr<const std::vector<std::uint8_t>>;

struct ShotFrame {
    Shot shot;
    Frame frame;
};

/// Decodes the frames that the shots show, one shot after the other. One thread at a time.
class ShotReader {
  public:
    /// @param shots  their frame numbers never fall.
    /// @throws ToolError when the video is not of the record's size; MediaError.
    ShotReader(const Sweep& sweep, std::vector<Shot> shots);

    media::FrameRate frameRate() const { return mVideo.frameRate(); }
    /// The next shot; nothing after the last, when the video was read to its end.
    /// @throws ToolError when the video holds another number of frames than the record; MediaError.
    std::optional<ShotFrame> next();

  private:
    bool decodeFrame();

    std::filesystem::path mName;
    std::vector<Shot> mShots;
    std::size_t mNext = 0;
    media::VideoReader mVideo;
    int mFramesInRecord;
    int mFramesRead = 0;
    Frame mFrame;  ///< The last one read.
};

}  // namespace orbitwalk::tool
