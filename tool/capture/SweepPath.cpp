#include "capture/SweepPath.h"

#include <algorithm>

namespace orbitwalk::tool {

PathExtent pathExtent(std::span<const PathPoint> path) {
    if (path.empty())
        return {};
    const auto [left, right] = std::ranges::minmax(path, {}, &PathPoint::x);
    const auto [top, bottom] = std::ranges::minmax(path, {}, &PathPoint::y);
    return {static_cast<double>(right.x) - left.x, static_cast<double>(bottom.y) - top.y};
}

OBWDirection sweepDirection(const PathPoint& from, const PathPoint& to, int orientation,
                            bool frontCameraFlipped) {
    const bool portrait = orientation == 90 || orientation == 270;
    const float motion = portrait ? to.y - from.y : to.x - from.x;
    if (motion == 0)
        return OBW_DIRECTION_LEFT2RIGHT;
    const bool upsideDown = orientation == 180 || orientation == 270;
    const bool leftToRight = (motion < 0) != (upsideDown != frontCameraFlipped);
    return leftToRight ? OBW_DIRECTION_LEFT2RIGHT : OBW_DIRECTION_RIGHT2LEFT;
}

}  // namespace orbitwalk::tool
