#pragma once

#include <vector>

#include "plan/SweepProgram.h"

namespace orbitwalk::refine {

/// Placements that go on from the last one of a path and come to rest, nearest first. Each axis
/// slows down evenly over the most frames that the room allows. Empty when an axis that matters
/// would have to stop within less than three frames.
/// @param step  from the path's last placement but one to its last, as far as the viewer sees it:
///        the change of x, y and angle from frame to frame in a frame that stands still.
/// @param most  number of placements, 0 or more.
std::vector<Placement> comingToRest(const Placement& from, const SimilarityTransform& step,
                                    const Room& room, int most);

}  // namespace orbitwalk::refine
