#pragma once

#include <span>
#include <vector>

#include "orbitwalk/Geometry.h"

namespace orbitwalk::refine {

/// Where a point of the picture was and where it is, pixels, from the frame's centre.
struct Track {
    PicturePoint from;
    PicturePoint to;
};

struct SimilarityFit {
    SimilarityTransform motion;   ///< About (0, 0).
    std::vector<double> weights;  ///< One a track; 0: the track moves otherwise.
    double residual = 0;          ///< Root mean square distance of the tracks of a weight, pixels.
};

/// The similarity that most of the tracks follow, by iteratively reweighted least squares
/// (Holland and Welsch, 1977; the closed form of each step: Umeyama, 1991).
///
/// A track counts with 1/max(r, floor), r its distance from the motion, so that the sum of
/// distances is made small, not of their squares: what moves otherwise pulls no harder for moving
/// farther, and the motion shifts little from frame to frame in a scene of several planes. Every
/// fit starts from the plain least squares. From there on, weights also fade to 0 between one and
/// two times a cut which follows the spread of the tracks themselves (five median distances): in a
/// still scene the walker's tracks go out altogether, and where everything lies apart, nothing
/// does.
/// @param floor  distance that measuring noise reaches, pixels, above 0.
/// @return a fit without a weight for fewer than two tracks.
SimilarityFit fitSimilarity(std::span<const Track> tracks, double floor);

}  // namespace orbitwalk::refine
