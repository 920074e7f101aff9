#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <vector>

#include "orbitwalk/Engine.h"
#include "orbitwalk/Geometry.h"

/// Which of the captured frames are the sweep, and which way it went.
namespace orbitwalk::tool {

/// What of it was asked for.
struct RangeOptions {
    std::optional<int> first;  ///< Else the first frame.
    std::optional<int> last;   ///< Else the last frame.
    std::set<int> skip;
    std::optional<OBWDirection> direction;  ///< Without one it is told from the measured motion.
};

struct SweepSelection {
    int first = 0;                    ///< First frame of the range to render.
    int last = 0;                     ///< Last frame of the range, inclusive.
    std::vector<std::int32_t> flags;  ///< One a frame; 1 = rendered.
    OBWDirection direction = OBW_DIRECTION_LEFT2RIGHT;
};

/// Reads a list of frame numbers and inclusive ranges, as in "3,7,10-14". Blanks are not allowed.
/// @throws UsageError for anything else, a range that runs backwards, or a number beyond the frames
/// that a sweep can hold.
std::set<int> parseFrameList(std::string_view text);

/// @param path  where the picture stands in each frame; not empty.
/// @param orientation  as given to start.
/// @throws UsageError for frames that the path has not.
SweepSelection selectRange(const RangeOptions& options, std::span<const Trajectory> path,
                           int orientation, bool frontCameraFlipped);

/// Tells the direction of a sweep from the way that the picture went, which is against the camera:
///
///     device orientation   left to right when the picture moves to the
///     0 and 360            left      (x falls)
///     90                   top       (y falls)
///     270                  bottom    (y rises)
///
/// and the other way round when the front camera's preview is mirrored. The table is that of the
/// record's border frames, whose orientation holds 90 and 270 swapped.
/// @param orientation  as given to start. A picture that stands still counts as left to right.
OBWDirection sweepDirection(const Trajectory& from, const Trajectory& to, int orientation,
                            bool frontCameraFlipped);

/// Whether the picture went up or down, as the device was held, rather than sideways: by more than
/// twice as much, and by more than a tenth of the picture.
bool isVertical(std::span<const Trajectory> path, int orientation, FrameSize size);

/// The orientation that stands for a video which players turn clockwise by 0, 90 or 270 degrees.
/// @return none for 180: the record has no value that a reader knows.
std::optional<int> orientationOfRotation(int degrees);

}  // namespace orbitwalk::tool
