#pragma once

#include <span>

#include "orbitwalk/Engine.h"

namespace orbitwalk::tool {

/// Where the picture stands in one frame, as the engine measured it: the picture's motion summed
/// since the first frame. Pixels of the full-size frame, x to the right, y down; radians.
struct PathPoint {
    float x = 0;
    float y = 0;
    float a = 0;
};

struct PathExtent {
    double x = 0;  ///< Pixels between the leftmost and the rightmost point.
    double y = 0;  ///< Pixels between the highest and the lowest point.
};

PathExtent pathExtent(std::span<const PathPoint> path);

/// Tells the direction of a sweep from the way that the picture went, which is against the camera:
///
///     device orientation   left to right when the picture moves to the
///     0 and 360            left      (x falls)
///     90                   top       (y falls)
///     180                  right     (x rises)
///     270                  bottom    (y rises)
///
/// and the other way round when the front camera's preview is mirrored. The table is that of the
/// record's border frames, whose orientation holds 90 and 270 swapped.
/// @param orientation  as given to start. A picture that stands still counts as left to right.
OBWDirection sweepDirection(const PathPoint& from, const PathPoint& to, int orientation,
                            bool frontCameraFlipped);

}  // namespace orbitwalk::tool
