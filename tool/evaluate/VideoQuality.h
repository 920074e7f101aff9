#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <opencv2/core/mat.hpp>
#include <optional>
#include <vector>

#include "evaluate/ResidualMotion.h"
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
    /// Decodes the next frame. @return false at the end.
    bool next();
    /// The last one decoded; overwritten by the next.
    const cv::Mat1b& frame() const { return mLuma; }
    int framesRead() const { return mFramesRead; }

  private:
    media::VideoReader mVideo;
    bool mMirrored;
    std::vector<std::uint8_t> mPixels;
    cv::Mat1b mLuma;
    int mFramesRead = 0;
};

/// What a stabilised video made of the frames that it shows.
struct SourceComparison {
    std::optional<ResidualMotion> residual;  ///< Of the source.
    double kept = 0;                         ///< Mean of View::kept without the missing border.
    double leastKept = 0;
    double beyond = 0;  ///< Mean of View::beyond.
    double mostBeyond = 0;
    std::int64_t missingPixels = 0;  ///< Of all frames, see missingBorder.
    /// Mean of relativeSharpness, over every fifth frame; nothing when none of them has one.
    std::optional<double> sharpness;
    int unregistered = 0;  ///< Frames that could not be found in the source; left out.
};

struct VideoQuality {
    int frames = 0;
    cv::Size size;
    std::optional<ResidualMotion> residual;
    std::int64_t blackPixels = 0;  ///< Of all frames, see blackBorder.
    int framesWithBlack = 0;
    std::optional<SourceComparison> source;
};

struct Source {
    std::filesystem::path video;
    /// Source frame of each frame of the video; never falls. Empty: the frames correspond.
    std::vector<int> frames;
    bool mirrored = false;  ///< The video shows the source left to right.
    /// Number of frames that the source must have; 0: not known.
    int recorded = 0;
    bool goesOn = false;  ///< It may have more.
};

/// Judges a video by its pictures alone.
/// @param progress  told the number of frames judged so far.
/// @throws ToolError when the source has other frames than the video needs, or the video shows
/// nothing of it; MediaError.
VideoQuality judgeVideo(const std::filesystem::path& video, const std::optional<Source>& source,
                        const std::function<void(int)>& progress);

}  // namespace orbitwalk::tool
