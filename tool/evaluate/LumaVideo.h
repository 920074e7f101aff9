#pragma once

#include <cstdint>
#include <filesystem>
#include <opencv2/core/mat.hpp>
#include <vector>

#include "media/VideoReader.h"

namespace orbitwalk::tool {

/// Brightness of a video's frames, one after the other. One thread at a time.
class LumaVideo {
  public:
    /// @param mirrored  give the frames left to right.
    /// @throws MediaError, as all of it.
    explicit LumaVideo(const std::filesystem::path& file, bool mirrored = false);

    cv::Size size() const { return {mVideo.width(), mVideo.height()}; }
    std::int64_t expectedFrames() const { return mVideo.expectedFrames(); }
    /// Decodes the next frame. @return the caller's own; empty at the end.
    cv::Mat1b next();
    int framesRead() const { return mFramesRead; }

  private:
    media::VideoReader mVideo;
    bool mMirrored;
    std::vector<std::uint8_t> mPixels;
    int mFramesRead = 0;
};

}  // namespace orbitwalk::tool
