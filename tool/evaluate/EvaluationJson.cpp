#include <nlohmann/json.hpp>

#include "evaluate/Evaluation.h"

namespace orbitwalk::tool {

namespace {

using Json = nlohmann::ordered_json;

template <typename Value>
Json orNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json(nullptr);
}

Json verdictJson(const std::optional<Verdict>& verdict) {
    return verdict ? toJson(*verdict) : Json(nullptr);
}

Json recordJson(const RecordEvaluation& record, std::optional<bool> vertical) {
    const SweepFacts& sweep = record.facts;
    return {{"frames", sweep.frames},
            {"renderedFrames", sweep.renderedFrames},
            {"keptView", sweep.keptView},
            {"missingPixels", sweep.missingPixels},
            {"missingBorderPixels", sweep.missingBorderPixels},
            {"meanCorrectionPixels", {{"x", sweep.meanCorrectionX}, {"y", sweep.meanCorrectionY}}},
            {"largestCorrectionPixels", sweep.largestCorrection},
            {"largestTurnDegrees", sweep.largestTurn},
            {"vertical", orNull(vertical)},
            {"verdict", verdictJson(record.verdict)}};
}

Json axisJson(const AxisError& error) {
    return {{"rms", error.rms}, {"max", error.max}};
}

Json pathJson(const PathError& path) {
    return {{"xPixels", axisJson(path.x)},
            {"yPixels", axisJson(path.y)},
            {"angleDegrees", axisJson(path.angle)},
            {"stepXPixels", axisJson(path.stepX)},
            {"stepYPixels", axisJson(path.stepY)},
            {"stepAngleDegrees", axisJson(path.stepAngle)},
            {"travelledPixels", path.travelled},
            {"driftPer100Pixels", {{"along", path.driftAlong}, {"across", path.driftAcross}}},
            {"repeatedShare", path.repeatedShare}};
}

Json residualJson(const std::optional<ResidualMotion>& residual) {
    if (!residual)
        return nullptr;
    return {{"xPixels", residual->x},
            {"yPixels", residual->y},
            {"angleDegrees", residual->angle},
            {"unmeasured", residual->unmeasured}};
}

Json sourceJson(const SourceComparison& source) {
    return {{"residualMotion", residualJson(source.residual)},
            {"keptView", source.kept},
            {"leastKeptView", source.leastKept},
            {"beyondSource", source.beyond},
            {"mostBeyondSource", source.mostBeyond},
            {"missingPixels", source.missingPixels},
            {"sharpness", orNull(source.sharpness)},
            {"unregistered", source.unregistered}};
}

Json videoJson(const VideoQuality& video) {
    Json json{{"frames", video.frames},           {"width", video.size.width},
              {"height", video.size.height},      {"residualMotion", residualJson(video.residual)},
              {"blackPixels", video.blackPixels}, {"framesWithBlack", video.framesWithBlack}};
    if (video.source)
        json["source"] = sourceJson(*video.source);
    return json;
}

}  // namespace

Json toJson(const Evaluation& evaluation) {
    Json json = Json::object();
    if (evaluation.sweep)
        json["sweep"] = recordJson(*evaluation.sweep, evaluation.vertical);
    if (evaluation.refined)
        json["refined"] = recordJson(*evaluation.refined, evaluation.vertical);
    if (evaluation.path)
        json["path"] = pathJson(*evaluation.path);
    if (evaluation.video)
        json["video"] = videoJson(*evaluation.video);
    json["verdict"] = verdictJson(evaluation.verdict);
    json["warnings"] = evaluation.warnings;
    return json;
}

}  // namespace orbitwalk::tool
