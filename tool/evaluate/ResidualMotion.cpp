#include "evaluate/ResidualMotion.h"

#include <algorithm>
#include <cmath>

#include "sweep/Degrees.h"

namespace orbitwalk::tool {

namespace {

/// Longer side of the pictures that motion is measured in.
constexpr int kMeasuredSide = 1280;

FrameMotion motionAtCentre(const Affine& map, cv::Size size) {
    const PicturePoint centre{(size.width - 1) / 2.0, (size.height - 1) / 2.0};
    const PicturePoint moved = map(centre);
    return {moved.x - centre.x, moved.y - centre.y, degrees(std::atan2(map.yx, map.xx))};
}

}  // namespace

std::optional<ResidualMotion> residualMotion(std::span<const std::optional<FrameMotion>> motions) {
    ResidualMotion residual;
    residual.unmeasured = static_cast<int>(
        std::ranges::count_if(motions, [](const auto& motion) { return !motion; }));
    int changes = 0;
    for (std::size_t k = 1; k < motions.size(); ++k) {
        if (!motions[k - 1] || !motions[k])
            continue;
        const FrameMotion& before = *motions[k - 1];
        const FrameMotion& now = *motions[k];
        residual.x += std::pow(now.x - before.x, 2);
        residual.y += std::pow(now.y - before.y, 2);
        residual.angle += std::pow(now.angle - before.angle, 2);
        ++changes;
    }
    if (changes == 0)
        return std::nullopt;
    for (double* axis : {&residual.x, &residual.y, &residual.angle})
        *axis = std::sqrt(*axis / changes);
    return residual;
}

MeasuredFrame::MeasuredFrame(const cv::Mat1b& luma)
    : mSize(luma.size()), mPicture(reducedPicture(luma, reductionTo(kMeasuredSide, luma.size()))) {}

std::optional<FrameMotion> MeasuredFrame::motionTo(const MeasuredFrame& next) const {
    const auto match = matchPictures(mPicture, next.mPicture.pyramid);
    if (!match)
        return std::nullopt;
    const Affine map = atFullSize(match->map, reductionTo(kMeasuredSide, mSize));
    return motionAtCentre(map, mSize);
}

}  // namespace orbitwalk::tool
