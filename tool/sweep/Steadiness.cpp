#include "sweep/Steadiness.h"

#include <algorithm>
#include <cmath>

#include "sweep/Playlist.h"
#include "sweep/RecordFacts.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

FrameSize sizeOf(const RecordReader& record) {
    return {record.width(), record.height()};
}

/// Of the picture from one shot to the next. @param recorded  one a rendered frame.
PictureMotions motionsBetween(std::span<const Shot> shots,
                              std::span<const SimilarityTransform> recorded, PicturePoint centre) {
    PictureMotions shown;
    std::size_t frame = 0;
    for (std::size_t i = 0; i < shots.size(); ++i) {
        SimilarityTransform motion{.about = centre};
        if (i > 0) {
            if (shots[i].frame != shots[i - 1].frame)
                motion = recorded[++frame];
            const auto before = similarityOf(shots[i - 1].frameFromPicture, centre);
            const auto now = similarityOf(shots[i].frameFromPicture, centre);
            motion = (now.inverse() * (motion * before)).takenAbout(centre);
        }
        shown.push_back(motion);
    }
    return shown;
}

}  // namespace

PictureMotions recordedMotions(std::span<const SweepRow> path, const RecordReader& record) {
    const FrameSize size = sizeOf(record);
    PictureMotions motions;
    SimilarityTransform sinceShown{.about = frameCentre(size)};
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (i > 0) {
            const Trajectory step = path[i].position - path[i - 1].position;
            sinceShown =
                SimilarityTransform{step.x, step.y, step.a, 0, measuringOrigin(size)}.takenAbout(
                    frameCentre(size)) *
                sinceShown;
        }
        if (!record.isRendered(static_cast<int>(i)))
            continue;
        const SimilarityTransform nothing{.about = frameCentre(size)};
        motions.push_back(motions.empty() ? nothing : sinceShown);
        sinceShown = nothing;
    }
    return motions;
}

PictureMotions recordedMotions(std::span<const refine::FrameMotion> motions,
                               const RecordReader& record) {
    std::vector<int> shown;
    for (int i = 0; i < record.frameCount(); ++i)
        if (record.isRendered(i))
            shown.push_back(i);
    auto plan = refine::planPath(motions, sizeOf(record), 1, {.shown = std::move(shown)});
    if (const auto* refusal = std::get_if<refine::PlanRefusal>(&plan))
        throw ToolError("the refined motions are of no use: " + refusal->text);
    return std::get<refine::PathPlan>(std::move(plan)).motions;
}

PictureMotions recordedMotions(const Sweep& sweep) {
    return sweep.refinement ? recordedMotions(sweep.refinement->motions, sweep.record)
                            : recordedMotions(requirePath(sweep), sweep.record);
}

PictureMotions shownMotions(std::span<const SimilarityTransform> recorded,
                            const RecordReader& record) {
    return motionsBetween(playlist(record, false), recorded, frameCentre(sizeOf(record)));
}

std::optional<BorderJump> borderJump(std::span<const SimilarityTransform> recorded,
                                     const RecordReader& record) {
    const std::vector<Shot> shots = playlist(record, true);
    const bool hasBorders =
        std::ranges::any_of(shots, [](const Shot& shot) { return shot.kind != ShotKind::Sweep; });
    if (!hasBorders || recorded.size() < 3)
        return std::nullopt;
    const PictureMotions shown = motionsBetween(shots, recorded, frameCentre(sizeOf(record)));
    BorderJump result{.shake = residualOf(recorded).shift()};
    for (std::size_t i = 1; i + 1 < shown.size(); ++i)
        if (shots[i - 1].kind != shots[i + 1].kind)
            result.join = std::max(
                result.join, std::hypot(shown[i + 1].x - shown[i].x, shown[i + 1].y - shown[i].y));
    return result;
}

refine::PathResidual residualOf(std::span<const SimilarityTransform> motions) {
    if (motions.size() < 3)
        return {};
    refine::PathResidual sum;
    for (std::size_t i = 2; i < motions.size(); ++i) {
        sum.x += std::pow(motions[i].x - motions[i - 1].x, 2);
        sum.y += std::pow(motions[i].y - motions[i - 1].y, 2);
        sum.angle += std::pow(motions[i].angle - motions[i - 1].angle, 2);
    }
    const double changes = static_cast<double>(motions.size() - 2);
    return {std::sqrt(sum.x / changes), std::sqrt(sum.y / changes), std::sqrt(sum.angle / changes)};
}

Steadiness steadinessOf(std::span<const SweepRow> path, const RecordReader& record) {
    const PictureMotions recorded = recordedMotions(path, record);
    return {residualOf(recorded), residualOf(shownMotions(recorded, record)), viewKeptBy(record),
            static_cast<int>(std::ranges::count(path, true, &SweepRow::repeated)),
            record.frameCount()};
}

std::optional<Steadiness> steadinessOf(const Sweep& sweep) {
    if (sweep.refinement)
        return steadinessOf(sweep.refinement->summary);
    if (sweep.path.empty())
        return std::nullopt;
    return steadinessOf(sweep.path, sweep.record);
}

}  // namespace orbitwalk::tool
