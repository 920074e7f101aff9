#include "engine/SweepSelection.h"

namespace orbitwalk {

SweepSelection selectSweep(std::span<const _ENCODING_FRAME_INFORMATION> frames, int startFrame,
                           int endFrame) {
    SweepSelection selection;
    Trajectory reference;
    for (int i = 0; i < static_cast<int>(frames.size()); ++i) {
        if (frames[i].render != 1 || i < startFrame || i > endFrame)
            continue;
        const Trajectory position{frames[i].x, frames[i].y, frames[i].a};
        if (selection.reference < 0) {
            selection.reference = i;
            reference = position;
        } else {
            selection.transforms.push_back({i, position - reference});
        }
    }
    return selection;
}

std::int32_t acceptedDirection(std::int32_t direction) {
    const bool accepted =
        direction == OBW_DIRECTION_LEFT2RIGHT || direction == OBW_DIRECTION_RIGHT2LEFT;
    return accepted ? direction : OBW_DIRECTION_LEFT2RIGHT;
}

SweepAxis sweepAxis(std::int32_t orientation, std::int32_t direction) {
    const bool horizontal = acceptedDirection(direction) == direction;
    const bool landscape = orientation == 0 || orientation == 180;
    return horizontal == landscape ? SweepAxis::x : SweepAxis::y;
}

bool isValidRange(RenderRange range, std::int32_t numFrames) {
    return range.start >= 0 && range.end >= 0 && numFrames >= range.end;
}

}  // namespace orbitwalk
