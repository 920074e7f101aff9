#include "sweep/SavedSummary.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "files/TextFile.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

double secondsOf(const nlohmann::json& value, const char* key) {
    const double seconds = value.at(key).get<double>();
    if (!std::isfinite(seconds) || seconds < 0)
        throw ToolError(std::string(key) + " is no time");
    return seconds;
}

SavedSummary summaryFrom(const nlohmann::json& json) {
    SavedSummary summary;
    summary.video = std::filesystem::path(json.at("video").get<std::string>()).filename().string();
    json.at("width").get_to(summary.width);
    json.at("height").get_to(summary.height);
    json.at("frames").get_to(summary.frames);
    json.at("truncated").get_to(summary.truncated);
    for (const Stage& stage : kStages)
        summary.seconds.*stage.seconds = secondsOf(json.at("seconds"), stage.key);
    return summary;
}

}  // namespace

SavedSummary parseSavedSummary(std::string_view text) {
    try {
        return summaryFrom(nlohmann::json::parse(text));
    } catch (const nlohmann::json::exception& error) {
        throw ToolError(error.what());
    }
}

std::optional<SavedSummary> readSavedSummary(const std::filesystem::path& file) {
    std::error_code cannotTell;
    if (!std::filesystem::exists(file, cannotTell) && !cannotTell)
        return std::nullopt;
    const std::string text = readTextFile(file);
    try {
        return parseSavedSummary(text);
    } catch (const ToolError& error) {
        throw ToolError(file.string() + ": no summary of a capture: " + error.what());
    }
}

}  // namespace orbitwalk::tool
