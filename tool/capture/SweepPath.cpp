#include "capture/SweepPath.h"

namespace orbitwalk::tool {

OBWDirection sweepDirection(const Trajectory& from, const Trajectory& to, int orientation,
                            bool frontCameraFlipped) {
    const bool portrait = orientation == 90 || orientation == 270;
    const double motion = portrait ? to.y - from.y : to.x - from.x;
    if (motion == 0)
        return OBW_DIRECTION_LEFT2RIGHT;
    const bool upsideDown = orientation == 180 || orientation == 270;
    const bool leftToRight = (motion < 0) != (upsideDown != frontCameraFlipped);
    return leftToRight ? OBW_DIRECTION_LEFT2RIGHT : OBW_DIRECTION_RIGHT2LEFT;
}

}  // namespace orbitwalk::tool
