#pragma once

#include <optional>
#include <span>
#include <vector>

#include "orbitwalk/RecordReader.h"
#include "orbitwalk/refine/PathPlanner.h"
#include "sweep/Sweep.h"
#include "sweep/Verdict.h"

/// How much of the hand's shake a record leaves, by the motions that the sweep was captured or
/// refined with: one measure for every command that judges a sweep.
namespace orbitwalk::tool {

/// Motions of the picture between the frames that a record renders, each since the rendered frame
/// before and about the frame's centre; the first is nothing.
using PictureMotions = std::vector<SimilarityTransform>;

/// As the engine measured them. @param path  one row a frame of the record.
PictureMotions recordedMotions(std::span<const SweepRow> path, const RecordReader& record);
/// As the refinement measured them, those in between where it could not.
/// @param record  which frames are rendered. @throws ToolError with the planner's reason.
PictureMotions recordedMotions(std::span<const refine::FrameMotion> motions,
                               const RecordReader& record);

/// By the motions that the sweep's record was made of. @throws ToolError: see requirePath.
PictureMotions recordedMotions(const Sweep& sweep);

/// What a viewer of the record's pictures still sees of the motions.
/// @param recorded  one a frame that the record renders.
PictureMotions shownMotions(std::span<const SimilarityTransform> recorded,
                            const RecordReader& record);

/// See refine::PathResidual: nothing for fewer than three frames.
refine::PathResidual residualOf(std::span<const SimilarityTransform> motions);

/// Changes of motion from one picture to the next. Pixels.
struct BorderJump {
    double join = 0;   ///< The largest where border frames join the sweep, as shown.
    double shake = 0;  ///< Of the sweep's frames as recorded, see residualOf.
};

/// @param recorded  one a frame that the record renders.
/// @return nothing without border frames, or with fewer than three frames.
std::optional<BorderJump> borderJump(std::span<const SimilarityTransform> recorded,
                                     const RecordReader& record);

/// Of a record by the engine's motions. @param path  one row a frame of the record.
Steadiness steadinessOf(std::span<const SweepRow> path, const RecordReader& record);
/// Of the sweep's record, the engine's or the refinement's. @return nothing without a measured
/// path.
std::optional<Steadiness> steadinessOf(const Sweep& sweep);

}  // namespace orbitwalk::tool
