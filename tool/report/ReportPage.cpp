#include "report/ReportPage.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "files/OwnFiles.h"
#include "files/PageText.h"
#include "sweep/Degrees.h"
#include "sweep/SmoothedPath.h"

namespace orbitwalk::tool {

namespace {

using Json = nlohmann::ordered_json;

constexpr double kPixelDigits = 1e3;
constexpr double kDegreeDigits = 1e5;

/// A value that a frame does not have is null.
Json rounded(const std::vector<double>& values, double digits) {
    Json json = Json::array();
    for (const double value : values)
        json.push_back(std::isfinite(value) ? Json(std::round(value * digits) / digits) : Json());
    return json;
}

Json trackJson(const Track& track) {
    return {{"x", rounded(track.x, kPixelDigits)},
            {"y", rounded(track.y, kPixelDigits)},
            {"angle", rounded(track.angle, kDegreeDigits)}};
}

Json roomJson(const Room& room) {
    return {{"left", rounded(room.left, kPixelDigits)},
            {"right", rounded(room.right, kPixelDigits)},
            {"top", rounded(room.top, kPixelDigits)},
            {"bottom", rounded(room.bottom, kPixelDigits)}};
}

/// The capture's own words, without the places of its files.
Json summaryJson(const ReportData& data) {
    Json json = toJson(data.summary);
    for (const char* place : {"source", "outputs", "checksums"})
        json.erase(place);
    json["video"] = data.summary.video.filename().string();
    return json;
}

Json leftJson(const refine::PathResidual& residual) {
    return {{"shift", residual.shift()}, {"angle", degrees(residual.angle)}};
}

Json refinedJson(const RefinedPaths& refined) {
    Json tracks = Json::array();
    for (const PictureTrack& track : refined.tracks)
        tracks.push_back({{"name", track.name},
                          {"path", trackJson(track.path)},
                          {"change", trackJson(track.change)},
                          {"residual", leftJson(track.residual)},
                          {"keep", track.keep}});
    Json plans = Json::array();
    for (const TradeOff& plan : refined.plans)
        plans.push_back({{"keep", plan.keep}, {"residual", leftJson(plan.residual)}});
    return {{"toolVersion", refined.summary.toolVersion},
            {"video", refined.summary.video},
            {"unmeasured", refined.summary.unmeasured.size()},
            {"tracks", tracks},
            {"plans", plans}};
}

Json cropJson(const ReportData& data) {
    Json shown = Json::array();
    for (const PicturePoint& corner : data.cropView.shown)
        shown.push_back({corner.x, corner.y});
    return {{"x", data.crop.x},
            {"y", data.crop.y},
            {"width", data.crop.width},
            {"height", data.crop.height},
            {"frame", data.cropView.frame},
            {"shown", shown}};
}

Json dataUri(std::string_view jpeg) {
    return "data:image/jpeg;base64," + base64(jpeg);
}

Json picturesJson(const ReportPictures& pictures) {
    Json strip = Json::array();
    for (const BeforeAfter& pair : pictures.strip)
        strip.push_back({{"frame", pair.frame},
                         {"recorded", dataUri(pair.recorded)},
                         {"steady", dataUri(pair.steady)}});
    return {{"crop", dataUri(pictures.crop)}, {"strip", strip}};
}

template <typename Value>
Json nullable(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

std::string withoutTags(std::string text) {
    for (std::size_t at = 0; (at = text.find('<', at)) != std::string::npos;)
        text.replace(at, 1, "\\u003c");
    return text;
}

}  // namespace

std::string reportJson(const ReportData& data, const ReportPictures& pictures) {
    const Json json{{"toolVersion", toolVersion()},
                    {"verdict", toJson(verdictOn(data.steadiness))},
                    {"captureKnown", data.captureKnown},
                    {"summary", summaryJson(data)},
                    {"direction", data.direction},
                    {"orientation", data.orientation},
                    {"flipped", data.flipped},
                    {"crop", cropJson(data)},
                    {"smoothing", wordsOf(data.summary.smoothing)},
                    {"feedbackStep", nullable(data.feedbackStep)},
                    {"feedbackSteps", kLastFeedbackStep},
                    {"repeatedWarning", nullable(data.repeatedWarning)},
                    {"repeated", data.repeated},
                    {"refined", data.refined ? refinedJson(*data.refined) : Json()},
                    {"motion", trackJson(data.motion)},
                    {"measured", trackJson(data.measured)},
                    {"gaussian", trackJson(data.gaussian)},
                    {"smoothed", trackJson(data.smoothed)},
                    {"correction", trackJson(data.correction)},
                    {"room", roomJson(data.room)},
                    {"pictures", picturesJson(pictures)}};
    return withoutTags(json.dump(-1, ' ', true, nlohmann::json::error_handler_t::replace));
}

std::string reportPage(const ReportContent& content) {
    return filledPage(assets::kReportPage, {{"mark", std::string(kMark)},
                                            {"licence", std::string(assets::kPlotLicence)},
                                            {"style", std::string(assets::kReportStyle)},
                                            {"data", std::string(content.json)},
                                            {"video", base64(content.video)},
                                            {"record", base64(content.record)},
                                            {"player-script", scriptText(assets::kPlayerScript)},
                                            {"script", scriptText(assets::kReportScript)}});
}

}  // namespace orbitwalk::tool
