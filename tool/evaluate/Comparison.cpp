#include "evaluate/Comparison.h"

#include <algorithm>

#include "sweep/Sweep.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

void Comparison::read(JudgedFrame& frame) {
    if (!mSource.frames.empty() && frame.index >= std::ssize(mSource.frames))
        fail();
    const int wanted = mSource.frames.empty() ? frame.index : mSource.frames[frame.index];
    frame.sourceIsNew = mVideo.framesRead() <= wanted;
    while (mVideo.framesRead() <= wanted) {
        mFrame = mVideo.next();
        if (mFrame.empty()) {
            if (mSource.recorded > 0)
                requireRecorded();
            fail();
        }
    }
    frame.source.luma = mFrame;
}

void Comparison::find(JudgedFrame& frame) {
    if (frame.sourceIsNew)
        frame.source.follow(mLast);
    frame.map = mRegistration.find(*frame.pair);
}

void Comparison::take(const JudgedFrame& frame) {
    mMotions.take(frame.source, frame.sourceMotion);
    if (!frame.shown) {
        ++mResult.unregistered;
        return;
    }
    mResult.missingPixels += frame.shown->missingPixels;
    takeView(frame.shown->view);
    if (frame.shown->sharpness)
        mSharpness.take(*frame.shown->sharpness);
}

SourceComparison Comparison::result(int frames) {
    if (mSource.recorded > 0)
        requireRecorded();
    if (mSource.frames.empty() ? !mVideo.next().empty() : frames != std::ssize(mSource.frames))
        fail();
    if (!mKept.value())
        throw ToolError(mSource.video.string() + ": not one frame of the video shows it");
    mResult.residual = mMotions.residual();
    mResult.kept = *mKept.value();
    mResult.beyond = *mBeyond.value();
    mResult.sharpness = mSharpness.value();
    return mResult;
}

void Comparison::requireRecorded() {
    while (!(mSource.goesOn && mVideo.framesRead() >= mSource.recorded) && !mVideo.next().empty()) {
    }
    requireFrameCount(mSource.video, mVideo.framesRead(), mSource.recorded);
}

void Comparison::takeView(const View& view) {
    mResult.leastKept = mKept.value() ? std::min(mResult.leastKept, view.kept) : view.kept;
    mResult.mostBeyond = std::max(mResult.mostBeyond, view.beyond);
    mKept.take(view.kept);
    mBeyond.take(view.beyond);
}

void Comparison::fail() const {
    throw ToolError(mSource.video.string() + ": its frames do not correspond to the video's");
}

}  // namespace orbitwalk::tool
