#include "simulate/TrueMotion.h"

namespace orbitwalk::tool {

// A pose shows scene point C + R(a) (p - c) at pixel p, with c the frame's centre. Setting both
// poses' scene points equal and solving for the current pixel gives the map; here both pixels are
// taken relative to the measuring origin.
Trajectory motionBetween(const CameraPose& previous, const CameraPose& current, FrameSize size) {
    const double turn = previous.a - current.a;
    const PicturePoint origin = measuringOrigin(size) - frameCentre(size);
    const PicturePoint shift =
        rotated({previous.x - current.x, previous.y - current.y}, -current.a);
    const PicturePoint t = shift + rotated(origin, turn) - origin;
    return {t.x, t.y, turn};
}

std::vector<TrueMotion> trueMotions(std::span<const CameraPose> poses, FrameSize size) {
    std::vector<TrueMotion> rows(poses.size());
    for (std::size_t k = 1; k < poses.size(); ++k) {
        const Trajectory step = motionBetween(poses[k - 1], poses[k], size);
        rows[k] = {step, rows[k - 1].sum + step};
    }
    return rows;
}

}  // namespace orbitwalk::tool
