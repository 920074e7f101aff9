#include "evaluate/VideoQuality.h"

#include <algorithm>
#include <opencv2/core.hpp>
#include <string>

#include "evaluate/PictureQuality.h"
#include "evaluate/Registration.h"
#include "sweep/Sweep.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

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

/// The source's side of the judgement, frame by frame beside the video.
class Comparison {
  public:
    explicit Comparison(const Source& source)
        : mSource(source), mVideo(source.video, source.mirrored) {}

    /// @param index  of the video's frame.
    void take(int index, const cv::Mat1b& picture) {
        advance(index);
        const auto map = mRegistration.find(picture, mVideo.frame());
        if (!map) {
            ++mResult.unregistered;
            return;
        }
        const cv::Mat1b missing = missingBorder(picture, mVideo.frame(), *map);
        mResult.missingPixels += cv::countNonZero(missing);
        View view = viewOf(*map, picture.size(), mVideo.size());
        view.kept -= hiddenShare(missing, mVideo.size(), *map);
        takeView(view);
        if (index % kSharpnessStride == 0)
            if (const auto sharpness = relativeSharpness(picture, mVideo.frame(), *map, missing))
                mSharpness.take(*sharpness);
    }

    /// @param frames  of the video.
    SourceComparison result(int frames) {
        if (mSource.recorded > 0)
            requireRecorded();
        if (mSource.frames.empty() ? mVideo.next() : frames != std::ssize(mSource.frames))
            fail();
        if (!mKept.value())
            throw ToolError(mSource.video.string() + ": not one frame of the video shows it");
        mResult.residual = residualMotion(mMeter.motions());
        mResult.kept = *mKept.value();
        mResult.beyond = *mBeyond.value();
        mResult.sharpness = mSharpness.value();
        return mResult;
    }

  private:
    static constexpr int kSharpnessStride = 5;

    void advance(int index) {
        if (!mSource.frames.empty() && index >= std::ssize(mSource.frames))
            fail();
        const int wanted = mSource.frames.empty() ? index : mSource.frames[index];
        if (mVideo.framesRead() > wanted)
            return;
        while (mVideo.framesRead() <= wanted)
            if (!mVideo.next()) {
                if (mSource.recorded > 0)
                    requireRecorded();
                fail();
            }
        mMeter.take(mVideo.frame());
    }

    /// Reads the source to its end.
    void requireRecorded() {
        while (!(mSource.goesOn && mVideo.framesRead() >= mSource.recorded) && mVideo.next()) {
        }
        requireFrameCount(mSource.video, mVideo.framesRead(), mSource.recorded);
    }

    void takeView(const View& view) {
        mResult.leastKept = mKept.value() ? std::min(mResult.leastKept, view.kept) : view.kept;
        mResult.mostBeyond = std::max(mResult.mostBeyond, view.beyond);
        mKept.take(view.kept);
        mBeyond.take(view.beyond);
    }

    [[noreturn]] void fail() const {
        throw ToolError(mSource.video.string() + ": its frames do not correspond to the video's");
    }

    const Source& mSource;
    LumaVideo mVideo;
    MotionMeter mMeter;
    Registration mRegistration;
    Mean mKept;
    Mean mBeyond;
    Mean mSharpness;
    SourceComparison mResult;
};

}  // namespace

LumaVideo::LumaVideo(const std::filesystem::path& file, bool mirrored)
    : mVideo(file), mMirrored(mirrored) {}

bool LumaVideo::next() {
    if (!mVideo.read(mPixels))
        return false;
    const cv::Mat1b luma(mVideo.height(), mVideo.width(), mPixels.data());
    if (mMirrored)
        cv::flip(luma, mLuma, 1);
    else
        mLuma = luma;
    ++mFramesRead;
    return true;
}

VideoQuality judgeVideo(const std::filesystem::path& video, const std::optional<Source>& source,
                        const std::function<void(int)>& progress) {
    LumaVideo frames(video);
    MotionMeter meter;
    std::optional<Comparison> comparison;
    if (source)
        comparison.emplace(*source);
    VideoQuality quality;
    quality.size = frames.size();
    while (frames.next()) {
        meter.take(frames.frame());
        const int black = cv::countNonZero(blackBorder(frames.frame()));
        quality.blackPixels += black;
        quality.framesWithBlack += black > 0;
        if (comparison)
            comparison->take(quality.frames, frames.frame());
        progress(++quality.frames);
    }
    quality.residual = residualMotion(meter.motions());
    if (comparison)
        quality.source = comparison->result(quality.frames);
    return quality;
}

}  // namespace orbitwalk::tool
