#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "media/VideoReader.h"
#include "sweep/Playlist.h"
#include "sweep/Sweep.h"

namespace orbitwalk::tool {

/// I420, of the size of the record; shared among the shots that show it.
using Frame = std::shared_ptr<const std::vector<std::uint8_t>>;

struct ShotFrame {
    Shot shot;
    Frame frame;
    std::size_t number = 0;  ///< Of the shot, counted from 0.
};

/// Decodes the frames that the shots show, one shot after the other. One thread at a time.
class ShotReader {
  public:
    /// @param shots  their frame numbers never fall.
    /// @throws ToolError when the video is not of the record's size; MediaError.
    ShotReader(const Sweep& sweep, std::vector<Shot> shots);

    media::FrameRate frameRate() const { return mVideo.frameRate(); }
    /// The next shot; nothing after the last, when the video was read to its end.
    /// @throws ToolError when the video holds another number of frames than the record, or a signal
    /// has come; MediaError.
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
