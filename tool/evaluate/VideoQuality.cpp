#include "evaluate/Evaluation.h"

#include <tbb/info.h>
#include <tbb/parallel_pipeline.h>

#include <memory>
#include <vector>

#include "evaluate/JudgedFrame.h"
#include "render/StepOrder.h"

namespace orbitwalk::tool {

namespace {

/// The judgement step by step. Steps that take the frames in their order never share what they
/// keep; the others keep nothing.
class Judgement {
  public:
    Judgement(const std::filesystem::path& video, const std::optional<Source>& source)
        : mVideo(video) {
        mQuality.size = mVideo.size();
        if (source)
            mComparison.emplace(*source);
    }

    /// @return false at the end.
    bool read(JudgedFrame& frame) {
        frame.picture.luma = mVideo.next();
        frame.index = mVideo.framesRead() - 1;
        return !frame.picture.luma.empty();
    }

    void readSource(JudgedFrame& frame) {
        if (mComparison)
            mComparison->read(frame);
    }

    void putInPlace(JudgedFrame& frame) {
        frame.picture.follow(mLast);
        if (mComparison)
            mComparison->find(frame);
    }

    /// @return number of frames taken.
    int take(const JudgedFrame& frame) {
        mMotions.take(frame.picture, frame.motion);
        mQuality.blackPixels += frame.blackPixels;
        mQuality.framesWithBlack += frame.blackPixels > 0;
        if (mComparison)
            mComparison->take(frame);
        return ++mQuality.frames;
    }

    VideoQuality result() {
        mQuality.residual = mMotions.residual();
        if (mComparison)
            mQuality.source = mComparison->result(mQuality.frames);
        return mQuality;
    }

  private:
    LumaVideo mVideo;
    std::optional<Comparison> mComparison;
    std::shared_ptr<const MeasuredFrame> mLast;
    Motions mMotions;
    VideoQuality mQuality;
};

/// Takes the video's frames through the steps.
void passAll(Judgement& judgement, const std::function<void(int)>& progress) {
    constexpr auto inOrder = tbb::filter_mode::serial_in_order;
    constexpr auto beside = tbb::filter_mode::parallel;
    // The frames pass in order and no more than so many are on their way: a slot is free again.
    std::vector<JudgedFrame> slots(
        static_cast<std::size_t>(2 * tbb::info::default_concurrency() + 2));
    std::size_t begun = 0;
    StepOrder order;
    const auto step = [&](tbb::filter_mode mode, auto work) {
        return tbb::make_filter<JudgedFrame*, JudgedFrame*>(mode, [&order, work](JudgedFrame* f) {
            const StepOrder::Step ordered(order);
            work(*f);
            return f;
        });
    };
    const auto read = [&](tbb::flow_control& control) {
        const StepOrder::Step ordered(order);
        JudgedFrame& frame = slots[begun++ % slots.size()];
        if (!judgement.read(frame))
            control.stop();
        return &frame;
    };
    const auto take = [&](JudgedFrame* frame) {
        const StepOrder::Step ordered(order);
        progress(judgement.take(*frame));
        *frame = {};
    };
    tbb::parallel_pipeline(
        slots.size(), tbb::make_filter<void, JudgedFrame*>(inOrder, read) &
                          step(inOrder, [&](JudgedFrame& frame) { judgement.readSource(frame); }) &
                          step(beside, [](JudgedFrame& frame) { frame.prepare(); }) &
                          step(inOrder, [&](JudgedFrame& frame) { judgement.putInPlace(frame); }) &
                          step(beside, [](JudgedFrame& frame) { frame.measure(); }) &
                          tbb::make_filter<JudgedFrame*, void>(inOrder, take));
}

}  // namespace

VideoQuality judgeVideo(const std::filesystem::path& video, const std::optional<Source>& source,
                        const std::function<void(int)>& progress) {
    Judgement judgement(video, source);
    passAll(judgement, progress);
    return judgement.result();
}

}  // namespace orbitwalk::tool
