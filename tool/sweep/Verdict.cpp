#include "sweep/Verdict.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace orbitwalk::tool {

namespace {

using Json = nlohmann::ordered_json;

std::string sentenceOn(const Steadiness& steadiness) {
    const double before = steadiness.before.shift();
    const double after = steadiness.after.shift();
    char text[200];
    if (!steadiness.isMeasured())
        return "Not steadier than recorded: the motion could not be measured.";
    if (before == 0)
        return "Nothing to steady: no shake was measured.";
    if (!steadiness.isSteadier())
        std::snprintf(text, sizeof text,
                      "Not steadier than recorded: %.2f px of shake there, %.2f px as shown.",
                      before, after);
    else
        std::snprintf(text, sizeof text,
                      "Steadier: %.2f of %.2f px of shake remain (%.0f %%), with %.1f %% of the "
                      "view kept.",
                      after, before, 100 * after / before, 100 * steadiness.viewKept);
    return text;
}

}  // namespace

Verdict verdictOn(const Steadiness& steadiness) {
    Verdict verdict{steadiness.isSteadier(), {}, steadiness.viewKept, sentenceOn(steadiness)};
    if (steadiness.isMeasured() && steadiness.before.shift() > 0)
        verdict.residualShare = steadiness.after.shift() / steadiness.before.shift();
    return verdict;
}

nlohmann::ordered_json toJson(const Verdict& verdict) {
    return {{"steadier", verdict.steadier},
            {"residualShare", verdict.residualShare ? Json(*verdict.residualShare) : Json()},
            {"viewKept", verdict.viewKept},
            {"text", verdict.text}};
}

std::optional<std::string> unmeasuredWarning(int unmeasured, int frames) {
    if (unmeasured * 10 <= frames)
        return std::nullopt;
    return "the motion of " + std::to_string(unmeasured) + " of " + std::to_string(frames) +
           " frames could not be measured: too few corners to follow (the picture is small, soft "
           "or dark, or moves too fast)";
}

std::vector<std::string> warningsOn(const Steadiness& steadiness) {
    std::vector<std::string> warnings;
    if (auto warning = unmeasuredWarning(steadiness.unmeasured, steadiness.frames))
        warnings.push_back(*std::move(warning));
    const Verdict verdict = verdictOn(steadiness);
    if (!verdict.steadier && (!steadiness.isMeasured() || verdict.residualShare))
        warnings.push_back(verdict.text);
    return warnings;
}

}  // namespace orbitwalk::tool
