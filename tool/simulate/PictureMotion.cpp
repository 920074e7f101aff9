#include "simulate/PictureMotion.h"

#include <cmath>

namespace orbitwalk::tool {

cv::Point2d rotated(cv::Point2d p, double angle) {
    const double c = std::cos(angle), s = std::sin(angle);
    return {c * p.x - s * p.y, s * p.x + c * p.y};
}

cv::Point2d frameCentre(FrameSize size) {
    return {(size.width - 1) / 2.0, (size.height - 1) / 2.0};
}

cv::Point2d measuringOrigin(FrameSize size) {
    constexpr int reduction = 4, border = 5;
    return cv::Point2d(reduction * (size.width / reduction / border),
                       reduction * (size.height / reduction / border));
}

// A pose shows scene point C + R(roll) (p - c) at pixel p, with c the frame's centre. Setting both
// poses' scene points equal and solving for the current pixel gives the map; here both pixels are
// taken relative to the measuring origin.
PictureMotion motionBetween(const CameraPose& previous, const CameraPose& current, FrameSize size) {
    const double turn = previous.roll - current.roll;
    const cv::Point2d origin = measuringOrigin(size) - frameCentre(size);
    const cv::Point2d shift =
        rotated({previous.x - current.x, previous.y - current.y}, -current.roll);
    const cv::Point2d t = shift + rotated(origin, turn) - origin;
    return {t.x, t.y, turn};
}

std::vector<TrueMotion> trueMotions(std::span<const CameraPose> poses, FrameSize size) {
    std::vector<TrueMotion> rows(poses.size());
    for (std::size_t k = 1; k < poses.size(); ++k) {
        const PictureMotion step = motionBetween(poses[k - 1], poses[k], size);
        const PictureMotion& sum = rows[k - 1].sum;
        rows[k] = {step, {sum.x + step.x, sum.y + step.y, sum.a + step.a}};
    }
    return rows;
}

}  // namespace orbitwalk::tool
