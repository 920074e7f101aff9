#pragma once

#include <cmath>
#include <random>
#include <span>
#include <vector>

#include "orbitwalk/refine/PathPlanner.h"

namespace orbitwalk::refine {

inline FrameMotion moved(double x, double y, double angle = 0, double logScale = 0,
                         PicturePoint about = {}) {
    return {.motion = {x, y, angle, logScale, about}, .quality = {}, .measured = true};
}

/// A pan by a hand that shakes, turns and walks.
inline std::vector<FrameMotion> shakySweep(int frames, FrameSize size, unsigned seed,
                                           double shake = 8) {
    std::mt19937 random(seed);
    std::normal_distribution<double> normal;
    const double pan = 10 * normal(random);
    std::vector<FrameMotion> motions;
    SimilarityTransform last;
    for (int t = 0; t < frames; ++t) {
        const SimilarityTransform hand{shake * normal(random),
                                       shake * normal(random),
                                       0.004 * normal(random),
                                       0.002 * normal(random),
                                       {}};
        motions.push_back(moved(pan + hand.x - last.x, hand.y - last.y, hand.angle - last.angle,
                                0.002 + hand.logScale - last.logScale, frameCentre(size)));
        last = hand;
    }
    return motions;
}

/// What the viewer sees from frame to frame, by composing the maps themselves.
inline std::vector<SimilarityTransform> seenBy(const PathPlan& plan,
                                               std::span<const SimilarityTransform> corrections) {
    std::vector<SimilarityTransform> seen;
    for (std::size_t t = 1; t < corrections.size(); ++t)
        seen.push_back((corrections[t] * (plan.motions[t] * corrections[t - 1].inverse()))
                           .takenAbout(frameCentre(plan.size)));
    return seen;
}

}  // namespace orbitwalk::refine
