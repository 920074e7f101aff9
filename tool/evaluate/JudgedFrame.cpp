#include "evaluate/JudgedFrame.h"

#include <opencv2/core.hpp>
#include <utility>

#include "evaluate/PictureQuality.h"

namespace orbitwalk::tool {

LumaVideo::LumaVideo(const std::filesystem::path& file, bool mirrored)
    : mVideo(file), mMirrored(mirrored) {}

cv::Mat1b LumaVideo::next() {
    if (!mVideo.read(mPixels))
        return {};
    ++mFramesRead;
    const cv::Mat1b luma(mVideo.height(), mVideo.width(), mPixels.data());
    if (!mMirrored)
        return luma.clone();
    cv::Mat1b mirrored;
    cv::flip(luma, mirrored, 1);
    return mirrored;
}

namespace {

std::optional<FrameMotion> motionOf(const MovingFrame& frame) {
    return frame.before ? frame.before->motionTo(*frame.measured) : std::nullopt;
}

ShownSource shownSource(const cv::Mat1b& picture, const cv::Mat1b& source, const Affine& map,
                        bool withSharpness) {
    const EdgeRegions missing = missingBorder(picture, source, map);
    ShownSource shown{viewOf(map, picture.size(), source.size()), pixelsOf(missing), {}};
    shown.view.kept -= hiddenShare(missing, source.size(), map);
    if (withSharpness)
        shown.sharpness = relativeSharpness(picture, source, map, missing);
    return shown;
}

}  // namespace

void MovingFrame::follow(std::shared_ptr<const MeasuredFrame>& last) {
    before = std::exchange(last, measured);
}

void JudgedFrame::prepare() {
    picture.prepare();
    blackPixels = pixelsOf(blackBorder(picture.luma));
    if (source.luma.empty())
        return;
    if (sourceIsNew)
        source.prepare();
    pair.emplace(picture.luma, source.luma);
}

void JudgedFrame::measure() {
    constexpr int sharpnessStride = 5;
    motion = motionOf(picture);
    sourceMotion = motionOf(source);
    if (map)
        shown = shownSource(picture.luma, source.luma, *map, index % sharpnessStride == 0);
}

}  // namespace orbitwalk::tool
