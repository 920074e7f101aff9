#pragma once

#include <optional>
#include <span>
#include <vector>

#include "sweep/Tables.h"

namespace orbitwalk::tool {

/// The last of the feedback search's runs, the one that smooths least.
inline constexpr int kLastFeedbackStep = 10;

/// The paths inside the engine, which the record does not hold, by the engine's own code.
struct SmoothedPath {
    int reference = -1;  ///< First frame that stop selects, -1 when there is none.
    /// Frames that the points belong to: those selected after the reference. Empty when there are
    /// none; then each path is the one point that stop sends in their place.
    std::vector<int> frames;
    std::vector<Trajectory> measured;  ///< The picture relative to the reference frame.
    std::vector<Trajectory> gaussian;
    /// What the stabiliser follows. The correction of the v-th selected frame (the reference is the
    /// 0th) is smoothed[v] minus the frame's measured position, which is 0 for the reference; the
    /// last selected frame repeats the one before it.
    std::vector<Trajectory> smoothed;
    /// Run of the feedback search that kept enough picture, 0 (smoothest) to 10; none: the engine
    /// fell back to no correction.
    std::optional<int> feedbackStep;
    CropRectangle crop;  ///< As the engine writes it into the record.
};

/// What the engine makes of a sweep at stop and after it.
/// @param path         as handed to stop, one row a frame.
/// @param first, last  range to render, inclusive; frames with flag 1 inside it are selected.
SmoothedPath smoothedPath(std::span<const SweepRow> path, int first, int last, int width,
                          int height);

}  // namespace orbitwalk::tool
