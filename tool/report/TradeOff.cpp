#include "report/TradeOff.h"

#include <cmath>

#include "orbitwalk/refine/PathPlanner.h"
#include "orbitwalk/refine/RecordWriter.h"
#include "sweep/Degrees.h"
#include "sweep/RecordFacts.h"
#include "sweep/Steadiness.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

/// Share of width and height that the plans to choose from keep, in hundredths.
constexpr int kLeastKeep = 80;
constexpr int kMostKeep = 99;

Trajectory trajectoryOf(const SimilarityTransform& motion) {
    return {motion.x, motion.y, motion.angle};
}

/// @param shown  the frames that the motions belong to.
PictureTrack trackOf(std::string name, const PictureMotions& motions, const std::vector<int>& shown,
                     int frames, double keep) {
    PictureTrack track{std::move(name), Track(frames), Track(frames), residualOf(motions), keep};
    Trajectory position;
    for (std::size_t k = 0; k < motions.size(); ++k) {
        position += trajectoryOf(motions[k]);
        track.path.set(shown[k], position);
        if (k > 1)
            track.change.set(shown[k], trajectoryOf(motions[k]) - trajectoryOf(motions[k - 1]));
    }
    return track;
}

double keepOf(const RecordReader& record) {
    return std::sqrt(viewKeptBy(record));
}

std::vector<TradeOff> plansOf(const Sweep& sweep, const std::vector<int>& shown) {
    std::vector<TradeOff> plans;
    for (int hundredths = kLeastKeep; hundredths <= kMostKeep; ++hundredths) {
        const double keep = hundredths / 100.0;
        const auto plan =
            refine::planPath(sweep.refinement->motions,
                             {sweep.record.width(), sweep.record.height()}, keep, {.shown = shown});
        if (const auto* refusal = std::get_if<refine::PlanRefusal>(&plan))
            throw ToolError("no path can be planned: " + refusal->text);
        plans.push_back({keep, std::get<refine::PathPlan>(plan).after});
    }
    return plans;
}

}  // namespace

void Track::set(int frame, const Trajectory& value) {
    x[frame] = value.x;
    y[frame] = value.y;
    angle[frame] = degrees(value.a);
}

RefinedPaths refinedPaths(const Sweep& sweep) {
    const Refinement& refinement = *sweep.refinement;
    const int frames = sweep.record.frameCount();
    const std::vector<int> shown = refine::shownFrames(refine::factsOf(sweep.record));
    const PictureMotions recorded = recordedMotions(refinement.motions, sweep.record);
    const auto track = [&](const char* name, const PictureMotions& motions, double keep) {
        return trackOf(name, motions, shown, frames, keep);
    };
    return {refinement.summary,
            {track("as recorded", recorded, 1),
             track("engine's record", shownMotions(recorded, refinement.engineRecord),
                   keepOf(refinement.engineRecord)),
             track("refined record", shownMotions(recorded, sweep.record), keepOf(sweep.record))},
            plansOf(sweep, shown)};
}

}  // namespace orbitwalk::tool
