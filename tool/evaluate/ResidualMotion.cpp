#include "evaluate/ResidualMotion.h"

#include <algorithm>
#include <cmath>

#include "evaluate/Registration.h"

namespace orbitwalk::tool {

namespace {

/// Longer side of the pictures that motion is measured in.
constexpr int kMeasuredSide = 1280;

FrameMotion motionAtCentre(const Affine& map, cv::Size size) {
    const PicturePoint centre{(size.width - 1) / 2.0, (size.height - 1) / 2.0};
    const PicturePoint moved = map(centre);
    return {moved.x - centre.x, moved.y - centre.y, std::atan2(map.yx, map.xx) * 180 / CV_PI};
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

void MotionMeter::take(const cv::Mat1b& luma) {
    const int factor = reductionTo(kMeasuredSide, luma.size());
    cv::Mat1b picture = reducedPicture(luma, factor);
    if (factor == 1)
        picture = picture.clone();
    if (!mLast.empty()) {
        const auto match = matchPictures(mLast, picture);
        mMotions.push_back(
            match ? std::make_optional(motionAtCentre(atFullSize(match->map, factor), luma.size()))
                  : std::nullopt);
    }
    mLast = picture;
}

}  // namespace orbitwalk::tool
