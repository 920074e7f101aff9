#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "evaluate/JudgedFrame.h"
#include "evaluate/Registration.h"
#include "evaluate/ResidualMotion.h"

namespace orbitwalk::tool {

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

struct Source {
    std::filesystem::path video;
    /// Source frame of each frame of the video; never falls. Empty: the frames correspond.
    std::vector<int> frames;
    bool mirrored = false;  ///< The video shows the source left to right.
    /// Number of frames that the source must have; 0: not known.
    int recorded = 0;
    bool goesOn = false;  ///< It may have more.
};

class Mean {
  public:
    void take(double value) {
        mSum += value;
        ++mCount;
    }
    std::optional<double> value() const {
        return mCount > 0 ? std::make_optional(mSum / mCount) : std::nullopt;
    }

  private:
    double mSum = 0;
    int mCount = 0;
};

/// The source's side of the judgement: its frames, where those of the video are in it, and what
/// comes of them. Each step takes the frames in their order; the steps may be at work on
/// different frames side by side.
class Comparison {
  public:
    /// @param source  outlives it. @throws MediaError, as all of it.
    explicit Comparison(const Source& source)
        : mSource(source), mVideo(source.video, source.mirrored) {}

    /// Step 1: reads the source frame. @throws ToolError when there is none.
    void read(JudgedFrame& frame);
    /// Step 2, once it is prepared: finds it in the source.
    void find(JudgedFrame& frame);
    /// Step 3, once it is measured.
    void take(const JudgedFrame& frame);

    /// Reads the source to its end. @param frames  of the video.
    /// @throws ToolError when it has other frames than the video needs, or the video shows nothing
    /// of it.
    SourceComparison result(int frames);

  private:
    void requireRecorded();
    void takeView(const View& view);
    [[noreturn]] void fail() const;

    const Source& mSource;
    LumaVideo mVideo;
    cv::Mat1b mFrame;  ///< The last one read.
    Registration mRegistration;
    std::shared_ptr<const MeasuredFrame> mLast;
    Motions mMotions;
    Mean mKept;
    Mean mBeyond;
    Mean mSharpness;
    SourceComparison mResult;
};

}  // namespace orbitwalk::tool
