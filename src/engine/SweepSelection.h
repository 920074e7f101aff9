#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "orbitwalk/Engine.h"
#include "orbitwalk/Geometry.h"

namespace orbitwalk {

/// Position of a selected frame, relative to the reference frame.
struct SweepTransform {
    int frame;  ///< Index among the encoded frames.
    Trajectory fromReference;

    friend bool operator==(const SweepTransform&, const SweepTransform&) = default;
};

/// What a stop takes from the caller's frames.
struct SweepSelection {
    int reference = -1;  ///< First selected frame, -1 when none is.
    std::vector<SweepTransform> transforms;

    friend bool operator==(const SweepSelection&, const SweepSelection&) = default;
};

/// Selects the frames whose render flag is 1 and whose index lies in startFrame..endFrame. The
/// first one only becomes the reference; each later one gives its position relative to it.
SweepSelection selectSweep(std::span<const _ENCODING_FRAME_INFORMATION> frames, int startFrame,
                           int endFrame);

/// Direction as a stop accepts it: 1 or 2; anything else becomes 1, left to right.
std::int32_t acceptedDirection(std::int32_t direction);

enum class SweepAxis { x, y };

/// Axis of the frame along which a sweep runs.
/// @param orientation  degrees
/// @param direction    an OBWDirection
SweepAxis sweepAxis(std::int32_t orientation, std::int32_t direction);

struct RenderRange {
    std::int32_t start;
    std::int32_t end;

    friend bool operator==(const RenderRange&, const RenderRange&) = default;
};

/// Whether the record can carry the caller's range as it is: nothing negative and an end that does
/// not exceed the number of frames. Otherwise the range is 0 to the number of frames.
bool isValidRange(RenderRange range, std::int32_t numFrames);

}  // namespace orbitwalk
