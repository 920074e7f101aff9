#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <opencv2/core/mat.hpp>
#include <optional>
#include <vector>

#include "evaluate/PictureQuality.h"
#include "evaluate/Registration.h"
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
    /// Decodes the next frame. @return the caller's own; empty at the end.
    cv::Mat1b next();
    int framesRead() const { return mFramesRead; }

  private:
    media::VideoReader mVideo;
    bool mMirrored;
    std::vector<std::uint8_t> mPixels;
    int mFramesRead = 0;
};

/// A frame whose motion since the one before it is measured.
struct MovingFrame {
    cv::Mat1b luma;  ///< Full-size.
    std::shared_ptr<const MeasuredFrame> measured;
    std::shared_ptr<const MeasuredFrame> before;  ///< None for the first frame.

    void prepare() { measured = std::make_shared<const MeasuredFrame>(luma); }
    /// @param last  the frame before it; this one then.
    void follow(std::shared_ptr<const MeasuredFrame>& last);
};

/// Motions of the frames that followed another one.
class Motions {
  public:
    void take(const MovingFrame& frame, const std::optional<FrameMotion>& motion) {
        if (frame.before)
            mMotions.push_back(motion);
    }
    std::optional<ResidualMotion> residual() const { return residualMotion(mMotions); }

  private:
    std::vector<std::optional<FrameMotion>> mMotions;
};

/// What a frame shows of its source frame.
struct ShownSource {
    View view;  ///< Kept: without the missing border.
    std::int64_t missingPixels = 0;
    std::optional<double> sharpness;  ///< See relativeSharpness.
};

/// A frame of a video on its way through the judgement. Its own part of it needs no other frame but
/// the one before.
struct JudgedFrame {
    int index = 0;
    MovingFrame picture;
    MovingFrame source;        ///< The frame that it shows; none where there is no comparison.
    bool sourceIsNew = false;  ///< The frame before shows another one, or there is none.
    std::optional<RegisteredPair> pair;
    std::optional<Affine> map;  ///< Source point of a point; none when it was not found there.

    std::int64_t blackPixels = 0;
    std::optional<FrameMotion> motion;
    std::optional<FrameMotion> sourceMotion;
    std::optional<ShownSource> shown;

    /// Makes it ready to be ordered among the frames and found in its source.
    void prepare();
    /// The rest, once it is.
    void measure();
};

}  // namespace orbitwalk::tool
