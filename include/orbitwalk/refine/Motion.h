#pragma once

/// @file
/// The picture's motion from one frame to the next, as the path is planned from it.

#include "orbitwalk/Geometry.h"

namespace orbitwalk::refine {

/// What a motion rests on.
struct MotionQuality {
    int tracks = 0;       ///< Points followed that agree with the motion.
    double spread = 0;    ///< Share of the picture that they cover, 0 to 1.
    double residual = 0;  ///< Root mean square of their distance from it, pixels of the frame.
};

struct FrameMotion {
    /// Of the picture since the previous frame, about the frame's centre. Pixels of the full-size
    /// frame. The first frame's is nothing.
    SimilarityTransform motion;
    MotionQuality quality;
    bool measured = false;  ///< Otherwise the motion has no meaning.
};

}  // namespace orbitwalk::refine
