#include "render/SideBySide.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>

#include "render/FramePlanes.h"

namespace orbitwalk::tool {

namespace {

constexpr int kWidestPair = 3840;
constexpr int kLabelMargin = 8;
constexpr uchar kLabelPaper = 32, kLabelInk = 235, kNoColour = 128;

/// @param length  of the side along which two stand.
int shrunkLength(int length) {
    return std::min(length, kWidestPair / 2);
}

/// The other side, shrunk likewise; even.
int shrunkWith(int other, int length) {
    return std::max(2, other * shrunkLength(length) / length / 2 * 2);
}

cv::Mat1b labelOf(const char* text, cv::Size half, int rotation) {
    const double scale = std::max(0.4, std::min(half.width, half.height) / 900.0);
    const int thickness = std::max(1, cvRound(1.5 * scale));
    int below = 0;
    const cv::Size ink = cv::getTextSize(text, cv::FONT_HERSHEY_SIMPLEX, scale, thickness, &below);
    const int pad = below;
    cv::Mat1b label((ink.height + below + 2 * pad) / 2 * 2, (ink.width + 2 * pad) / 2 * 2,
                    kLabelPaper);
    cv::putText(label, text, {pad, pad + ink.height}, cv::FONT_HERSHEY_SIMPLEX, scale, kLabelInk,
                thickness, cv::LINE_AA);
    if (rotation != 0)
        cv::rotate(label, label,
                   rotation == 90 ? cv::ROTATE_90_COUNTERCLOCKWISE : cv::ROTATE_90_CLOCKWISE);
    const bool fits =
        label.cols + 2 * kLabelMargin <= half.width && label.rows + 2 * kLabelMargin <= half.height;
    return fits ? label : cv::Mat1b();
}

void place(const cv::Mat1b& plane, cv::Mat1b target) {
    if (plane.size() == target.size())
        plane.copyTo(target);
    else
        cv::resize(plane, target, target.size(), 0, 0, cv::INTER_AREA);
}

cv::Rect ofColour(const cv::Rect& luma) {
    return {luma.x / 2, luma.y / 2, luma.width / 2, luma.height / 2};
}

}  // namespace

SideBySide::SideBySide(cv::Size frame, int rotation) : mFrame(frame), mRotation(rotation) {
    const auto [width, height] = std::pair(frame.width, frame.height);
    mHalf = rotation == 0 ? cv::Size(shrunkLength(width), shrunkWith(height, width))
                          : cv::Size(shrunkWith(width, height), shrunkLength(height));
    mLabels = {labelOf("recorded", mHalf, rotation), labelOf("steady", mHalf, rotation)};
}

cv::Size SideBySide::size() const {
    return mRotation == 0 ? cv::Size(2 * mHalf.width, mHalf.height)
                          : cv::Size(mHalf.width, 2 * mHalf.height);
}

/// Turned clockwise by 90 degrees, what is below goes to the left.
cv::Point SideBySide::cornerOf(int half) const {
    if (mRotation == 0)
        return {half * mHalf.width, 0};
    return {0, (mRotation == 90 ? 1 - half : half) * mHalf.height};
}

std::vector<std::uint8_t> SideBySide::operator()(std::span<const std::uint8_t> recorded,
                                                 std::span<const std::uint8_t> steady) const {
    std::vector<std::uint8_t> output(frameBytes(size()));
    FramePlanes pair = planesOf(std::span(output), size());
    for (const int half : {0, 1}) {
        const FramePlanes planes = planesOf(half == 0 ? recorded : steady, mFrame);
        const cv::Rect area(cornerOf(half), mHalf);
        place(planes.y, pair.y(area));
        place(planes.cb, pair.cb(ofColour(area)));
        place(planes.cr, pair.cr(ofColour(area)));
        const cv::Mat1b& label = mLabels[half];
        if (label.empty())
            continue;
        // Above on the left, once turned.
        const cv::Point corner(
            mRotation == 270 ? mHalf.width - kLabelMargin - label.cols : kLabelMargin,
            mRotation == 90 ? mHalf.height - kLabelMargin - label.rows : kLabelMargin);
        const cv::Rect labelled(area.tl() + corner, label.size());
        label.copyTo(pair.y(labelled));
        pair.cb(ofColour(labelled)).setTo(kNoColour);
        pair.cr(ofColour(labelled)).setTo(kNoColour);
    }
    return output;
}

}  // namespace orbitwalk::tool
