#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "orbitwalk/refine/PathPlanner.h"

/// Whether a sweep got steadier, in the same words wherever that is told.
namespace orbitwalk::tool {

/// How much of the hand's shake there was, and how much of it is left.
struct Steadiness {
    refine::PathResidual before;  ///< Of the frames as recorded.
    refine::PathResidual after;   ///< As they are shown, in pixels of the frame.
    double viewKept = 1;          ///< Share of the frame's area that is shown.
    int unmeasured = 0;           ///< Motions that could not be measured.
    int frames = 0;

    /// Otherwise most motions are guesses, and so are the residuals.
    bool isMeasured() const { return unmeasured * 2 <= frames; }
    bool isSteadier() const { return isMeasured() && after.shift() < before.shift(); }
};

struct Verdict {
    bool steadier = false;
    /// Of the shake as recorded, what is left. Nothing where it could not be measured or there is
    /// none.
    std::optional<double> residualShare;
    double viewKept = 1;  ///< Share of the frame's area.
    std::string text;     ///< One sentence: steadier by how much at which price, or not and why.
};

Verdict verdictOn(const Steadiness& steadiness);
nlohmann::ordered_json toJson(const Verdict& verdict);

/// A line that warns of too many motions that could not be measured, more than a tenth of the
/// frames.
std::optional<std::string> unmeasuredWarning(int unmeasured, int frames);

/// What is of little use: that, and a sweep that shook and is not steadier, in the verdict's words.
std::vector<std::string> warningsOn(const Steadiness& steadiness);

}  // namespace orbitwalk::tool
