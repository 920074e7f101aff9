#pragma once

#include "stabilization/CropBounds.h"

namespace orbitwalk {

/// Trims the longer side of the bounds until they have the frame's aspect ratio. Each of the two
/// edges gives in proportion to the margin that it has already (at least one pixel).
///
/// Ratios are compared in double precision, the excess and the nearer edge computed in single, the
/// farther edge in double, edges truncated: bounds are part of the record's format.
/// @param bounds  within 0, width, 0, height, as a run leaves them that keeps enough picture.
/// @param size    positive.
CropBounds fitToAspect(const CropBounds& bounds, FrameSize size);

}  // namespace orbitwalk
