#include "orbitwalk/refine/PathPlanner.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "plan/SweepProgram.h"

namespace orbitwalk::refine {

namespace {

using Motions = std::vector<SimilarityTransform>;
using Refusal = std::optional<PlanRefusal>;

Refusal refuse(PlanFault fault, std::string text) {
    return PlanRefusal{fault, std::move(text)};
}

Refusal checkMotions(std::span<const FrameMotion> motions, FrameSize size) {
    const auto isSide = [](int side) { return side >= 4 && side <= 32767; };
    if (!isSide(size.width) || !isSide(size.height))
        return refuse(PlanFault::FrameSize, "frames of " + std::to_string(size.width) + "x" +
                                                std::to_string(size.height));
    if (motions.empty())
        return refuse(PlanFault::NoFrames, "no frame to plan for");
    constexpr double quarterTurn = 1.5707963267948966, mostLogScale = 1;
    for (std::size_t t = 1; t < motions.size(); ++t) {
        const SimilarityTransform& m = motions[t].motion;
        // A comparison with NaN is false.
        const bool plausible = std::abs(m.x) <= size.width && std::abs(m.y) <= size.height &&
                               std::abs(m.angle) <= quarterTurn &&
                               std::abs(m.logScale) <= mostLogScale &&
                               std::isfinite(m.about.x + m.about.y);
        if (motions[t].measured && !plausible)
            return refuse(PlanFault::Motion, "the motion of frame " + std::to_string(t) +
                                                 " is not a number or beyond any frame");
    }
    return {};
}

Refusal checkOptions(const PlanOptions& options, std::ptrdiff_t frames) {
    int last = -1;
    for (const int frame : options.shown) {
        if (frame <= last || frame >= frames)
            return refuse(PlanFault::Selection, "shown frame " + std::to_string(frame) +
                                                    " follows frame " + std::to_string(last) +
                                                    " of " + std::to_string(frames));
        last = frame;
    }
    for (const double limit :
         {options.limitX, options.limitY, options.limitAngle, options.limitLogScale})
        if (!(limit >= 0))
            return refuse(PlanFault::Options, "a limit that is negative or not a number");
    return {};
}

Refusal check(std::span<const FrameMotion> motions, FrameSize size, const PlanOptions& options) {
    if (auto refusal = checkMotions(motions, size))
        return refusal;
    return checkOptions(options, std::ssize(motions));
}

SimilarityTransform between(const SimilarityTransform& a, const SimilarityTransform& b,
                            double share) {
    const auto mix = [share](double from, double to) { return from + share * (to - from); };
    return {mix(a.x, b.x), mix(a.y, b.y), mix(a.angle, b.angle), mix(a.logScale, b.logScale),
            a.about};
}

/// The motions about the centre, with those that were not measured taken between the nearest ones
/// that were; at either end the nearest one, and nothing when there is none at all.
Motions bridged(std::span<const FrameMotion> motions, FrameSize size) {
    const SimilarityTransform nothing{0, 0, 0, 0, frameCentre(size)};
    Motions whole(motions.size(), nothing);
    std::ptrdiff_t last = 0;  // measured; 0 before there is one
    for (std::ptrdiff_t t = 1; t < std::ssize(motions); ++t) {
        if (!motions[t].measured)
            continue;
        whole[t] = motions[t].motion.takenAbout(nothing.about);
        const SimilarityTransform& before = last > 0 ? whole[last] : whole[t];
        for (std::ptrdiff_t k = last + 1; k < t; ++k)
            whole[k] = between(before, whole[t], double(k - last) / double(t - last));
        last = t;
    }
    for (std::ptrdiff_t k = last + 1; last > 0 && k < std::ssize(motions); ++k)
        whole[k] = whole[last];
    return whole;
}

/// From each shown frame to the next, through those that are left out.
Motions composed(const Motions& motions, std::span<const int> shown) {
    Motions composed;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        SimilarityTransform whole{0, 0, 0, 0, motions.front().about};
        for (int t = i > 0 ? shown[i - 1] + 1 : shown[i] + 1; t <= shown[i]; ++t)
            whole = motions[t] * whole;
        composed.push_back(whole);
    }
    return composed;
}

/// About the frame's centre, with sides of the frame's parity.
CropRectangle centredCrop(FrameSize size, double keep) {
    const auto cut = [keep](int side) {
        return std::min(static_cast<int>(std::lround(side * (1 - keep) / 2)), (side - 1) / 2);
    };
    const int x = cut(size.width);
    const int y = cut(size.height);
    return {x, y, size.width - 2 * x, size.height - 2 * y};
}

Placement placementOf(const double* e, int axes, double radius, PicturePoint centre) {
    return {e[0], e[1], e[2] / radius, axes == 4 ? e[3] / radius : 0, centre};
}

/// By the root mean square distance of the crop's points from its centre, or from that of a tenth
/// of the frame: turning would cost a crop of a few pixels nothing, and the plan would spin it.
PathWeights weightsFor(const CropRectangle& crop, FrameSize size) {
    constexpr double least = 0.1;
    const double diagonal =
        std::max(std::hypot(crop.width, crop.height), least * std::hypot(size.width, size.height));
    return {.radius = diagonal / std::sqrt(12)};
}

/// Largest change of a shift, in pixels.
double largestChange(std::span<const Placement> a, std::span<const Placement> b, double radius) {
    double largest = 0;
    for (std::size_t t = 0; t < a.size(); ++t)
        largest = std::max({largest, std::abs(a[t].x - b[t].x), std::abs(a[t].y - b[t].y),
                            radius * std::abs(a[t].angle - b[t].angle),
                            radius * std::abs(a[t].logScale - b[t].logScale)});
    return largest;
}

/// Gauss-Newton: what the viewer sees is almost linear in the placements. A linearisation leaves
/// out about the product of a turn and a shift, so two programmes do unless a clip is wild.
std::vector<Placement> optimalPlacements(const Motions& motions, const Room& room,
                                         const PathWeights& weights, const PlanOptions& options,
                                         PathPlan& plan) {
    constexpr int mostRounds = 4;
    constexpr double leftOut = 0.1;  // pixels
    const double settled = std::sqrt(leftOut * weights.radius);
    const PicturePoint centre = frameCentre(plan.size);
    std::vector<Placement> placements(motions.size(), {0, 0, 0, 0, centre});
    for (int round = 0; round < mostRounds && motions.size() > 2; ++round) {
        const QuadraticProgram program = sweepProgram(motions, placements, room, weights, options);
        const Optimum optimum = solve(program, round == 0 ? 1e-3 : 1e-6);
        std::vector<Placement> next;
        for (std::size_t t = 0; t < motions.size(); ++t)
            next.push_back(room.shrunk(placementOf(optimum.x.data() + t * program.block,
                                                   program.block, weights.radius, centre)));
        const double change = largestChange(placements, next, weights.radius);
        placements = std::move(next);
        plan.objective = optimum.value;
        plan.dualityGap = optimum.gap;
        plan.steps += optimum.steps;
        if (round > 0 && change < settled)
            break;
    }
    return placements;
}

PathPlan planned(std::span<const FrameMotion> given, FrameSize size, double keep,
                 const PlanOptions& options) {
    PathPlan plan;
    plan.size = size;
    plan.crop = centredCrop(size, keep);
    plan.shown = options.shown;
    for (int t = 0; options.shown.empty() && t < std::ssize(given); ++t)
        plan.shown.push_back(t);
    plan.motions = composed(bridged(given, size), plan.shown);
    for (int t = plan.shown.front() + 1; t <= plan.shown.back(); ++t)
        if (!given[t].measured)
            plan.bridged.push_back(t);
    const std::vector<Placement> none(plan.shown.size(), {0, 0, 0, 0, frameCentre(size)});
    const std::vector<Placement> placements = optimalPlacements(
        plan.motions, Room(size, plan.crop), weightsFor(plan.crop, size), options, plan);
    plan.before = residualOf(plan.motions, none);
    plan.after = residualOf(plan.motions, placements);
    double shown = 0;
    for (const Placement& placement : placements) {
        plan.corrections.push_back(placement.inverse());
        shown += std::exp(2 * placement.logScale);
    }
    plan.viewKept = shown / double(placements.size()) * plan.crop.width * plan.crop.height /
                    (double(size.width) * size.height);
    return plan;
}

/// @param reached  is reached at keep `from`, not at `beyond`.
template <typename Reaches>
PathPlan largestThatReaches(PathPlan reached, double from, double beyond, Reaches&& plan) {
    constexpr double resolution = 1e-3;
    while (beyond - from > resolution) {
        const double keep = (from + beyond) / 2;
        if (auto next = plan(keep)) {
            reached = *std::move(next);
            from = keep;
        } else {
            beyond = keep;
        }
    }
    return reached;
}

}  // namespace

std::variant<PathPlan, PlanRefusal> planPath(std::span<const FrameMotion> motions, FrameSize size,
                                             double keep, const PlanOptions& options) {
    if (auto refusal = check(motions, size, options))
        return *std::move(refusal);
    if (!(keep > 0 && keep <= 1))
        return PlanRefusal{PlanFault::Keep, "the share to keep is not above 0 and at most 1"};
    return planned(motions, size, keep, options);
}

std::variant<PathPlan, PlanRefusal> planForSteadiness(std::span<const FrameMotion> motions,
                                                      FrameSize size, double residual,
                                                      const PlanOptions& options) {
    constexpr double leastKeep = 0.5;
    if (auto refusal = check(motions, size, options))
        return *std::move(refusal);
    if (!(residual >= 0))
        return PlanRefusal{PlanFault::Steadiness, "a steadiness that is negative or not a number"};
    PathPlan whole = planned(motions, size, 1, options);
    if (whole.after.shift() <= residual)
        return whole;
    PathPlan least = planned(motions, size, leastKeep, options);
    if (least.after.shift() > residual)
        return PlanRefusal{PlanFault::Steadiness,
                           "no crop reaches a residual of " + std::to_string(residual) +
                               " pixels; the nearest is " + std::to_string(least.after.shift()) +
                               " with half of the width and height kept"};
    return largestThatReaches(std::move(least), leastKeep, 1, [&](double keep) {
        std::optional<PathPlan> plan = planned(motions, size, keep, options);
        return plan->after.shift() <= residual ? std::move(plan) : std::nullopt;
    });
}

}  // namespace orbitwalk::refine
