#include "report/ReportJson.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <span>
#include <string_view>

#include "files/PageText.h"
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

Json captureJson(const Summary& capture) {
    Json seconds;
    for (const Stage& stage : kStages)
        seconds[stage.key] = capture.seconds.*stage.seconds;
    return {{"video", capture.video.filename().string()},
            {"truncated", capture.truncated},
            {"seconds", seconds}};
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
Json orNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

std::string withoutTags(std::string text) {
    for (std::size_t at = 0; (at = text.find('<', at)) != std::string::npos;)
        text.replace(at, 1, "\\u003c");
    return text;
}

}  // namespace

std::string reportJson(const ReportData& data, const ReportPictures& pictures) {
    const Json json{{"capture", data.capture ? captureJson(*data.capture) : Json()},
                    {"width", data.width},
                    {"height", data.height},
                    {"frames", data.frames},
                    {"first", data.range.begin},
                    {"last", data.range.end - 1},
                    {"rendered", data.rendered},
                    {"direction", data.direction},
                    {"orientation", data.orientation},
                    {"flipped", data.flipped},
                    {"crop", cropJson(data)},
                    {"smoothing", wordsOf(data.smoothing)},
                    {"feedbackStep", orNull(data.feedbackStep)},
                    {"feedbackSteps", kLastFeedbackStep},
                    {"repeatedMotions", data.repeatedMotions},
                    {"repeatedWarning", orNull(data.repeatedWarning)},
                    {"repeated", data.repeated},
                    {"motion", trackJson(data.motion)},
                    {"measured", trackJson(data.measured)},
                    {"gaussian", trackJson(data.gaussian)},
                    {"smoothed", trackJson(data.smoothed)},
                    {"correction", trackJson(data.correction)},
                    {"room", roomJson(data.room)},
                    {"pictures", picturesJson(pictures)}};
    return withoutTags(json.dump(-1, ' ', true, nlohmann::json::error_handler_t::replace));
}

}  // namespace orbitwalk::tool
