#pragma once

/// @file
/// The sweep's path as a quadratic programme.
///
/// The crop rectangle lies in frame t at P_t(q) = c + u + exp(l) R(a) (q - c), with the placement
/// e_t = (u, a, l), c the frame's centre and q a point of the output picture. Between two frames
/// the viewer sees the motion P_t^-1 F_t P_(t-1), F_t that of the picture in the frames. At the
/// centre it is r_t = exp(-l_t) R(-a_t) (A_t u_(t-1) + f_t - u_t), its angle a_(t-1) + angle(f_t) -
/// a_t, its logarithmic scale alike.

#include <Eigen/Core>
#include <span>
#include <vector>

#include "orbitwalk/Geometry.h"
#include "orbitwalk/refine/PathPlanner.h"
#include "plan/QuadraticProgram.h"

namespace orbitwalk::refine {

/// Where the crop lies in a frame: the map from the output picture, about the frame's centre.
using Placement = SimilarityTransform;

/// What the viewer sees between two frames, about the centre.
SimilarityTransform seenMotion(const Placement& before, const SimilarityTransform& motion,
                               const Placement& now);

PathResidual residualOf(std::span<const SimilarityTransform> motions,
                        std::span<const Placement> placements);

/// Room of a crop in a frame, between the outermost pixel centres, in half sizes.
struct Room {
    double halfWidth = 0;   ///< Of the crop.
    double halfHeight = 0;  ///< Of the crop.
    double x = 0;           ///< Of the frame.
    double y = 0;           ///< Of the frame.

    /// Room for the crop in a frame, less what the record's fixed point may take off.
    Room(FrameSize frame, const CropRectangle& crop);
    /// All of the crop lies inside.
    bool holds(const Placement& placement) const;
    /// The placement, scaled towards none until the room holds it.
    Placement shrunk(const Placement& placement) const;
};

/// Weights of the programme's squares. Angles count as pixels at `radius` from the centre, which
/// also makes the variables of one size.
struct PathWeights {
    double radius = 0;
    /// Of turns: 1 for the picture's mean. More, as a picture that shifts a little less evenly is
    /// hardly noticed, one that rolls is; docs/refine.md has what it costs.
    double angle = 20;
    double second = 1;  ///< Of the second difference of r, beside 1 for the first.
};

/// The programme in the placements' deviation from none, linearised about `around`: per frame x, y,
/// radius * angle and, with the scale smoothed, radius * logScale.
QuadraticProgram sweepProgram(std::span<const SimilarityTransform> motions,
                              std::span<const Placement> around, const Room& room,
                              const PathWeights& weights, const PlanOptions& options);

}  // namespace orbitwalk::refine
