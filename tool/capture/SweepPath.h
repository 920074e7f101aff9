#pragma once

#include "orbitwalk/Engine.h"
#include "orbitwalk/Geometry.h"

namespace orbitwalk::tool {

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
OBWDirection sweepDirection(const Trajectory& from, const Trajectory& to, int orientation,
                            bool frontCameraFlipped);

}  // namespace orbitwalk::tool
