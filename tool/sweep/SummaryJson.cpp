#include <algorithm>
#include <cmath>
#include <concepts>
#include <limits>
#include <nlohmann/json.hpp>

#include "sweep/Summary.h"
#include "terminal/Print.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr OBWDirection kCaptureDirections[] = {OBW_DIRECTION_LEFT2RIGHT, OBW_DIRECTION_RIGHT2LEFT,
                                               OBW_DIRECTION_TOP2BOTTOM};
constexpr Smoothing kSmoothings[] = {Smoothing::Smoothed, Smoothing::FellBack,
                                     Smoothing::TooFewFrames};

/// Which files have a value: all, or those with a schema.
enum class Since { Always, Schema1 };

/// Every value of sweep.json under its place, for the writer and the reader alike.
template <typename AnySummary, typename Visitor>
void visitValues(AnySummary& s, Visitor& visit) {
    visit("/schema", s.schema, Since::Schema1);
    visit("/toolVersion", s.toolVersion, Since::Schema1);
    visit("/complete", s.complete, Since::Schema1);
    visit("/video", s.video, Since::Always);
    visit("/source", s.source, Since::Schema1);
    visit("/checksums/video", s.checksums.video, Since::Schema1);
    visit("/checksums/record", s.checksums.record, Since::Schema1);
    visit("/checksums/path", s.checksums.path, Since::Schema1);
    visit("/width", s.width, Since::Always);
    visit("/height", s.height, Since::Always);
    visit("/frames", s.frames, Since::Always);
    visit("/frameRate/video", s.videoRate, Since::Schema1);
    visit("/truncated", s.truncated, Since::Always);
    visit("/first", s.first, Since::Schema1);
    visit("/last", s.last, Since::Schema1);
    visit("/skipped", s.skipped, Since::Schema1);
    visit("/rendered", s.rendered, Since::Schema1);
    visit("/direction", s.direction, Since::Schema1);
    visit("/pathExtent/x", s.extent.x, Since::Schema1);
    visit("/pathExtent/y", s.extent.y, Since::Schema1);
    visit("/cropKept/width", s.cropWidthShare, Since::Schema1);
    visit("/cropKept/height", s.cropHeightShare, Since::Schema1);
    visit("/smoothing", s.smoothing, Since::Schema1);
    visit("/repeatedMotions", s.repeatedMotions, Since::Schema1);
    for (const Stage& stage : kStages)
        visit(std::string("/seconds/") + stage.key, s.seconds.*stage.seconds, Since::Always);
}

class Writer {
  public:
    template <typename Value>
    void operator()(const std::string& place, const Value& value, Since) {
        json[Json::json_pointer(place)] = jsonOf(value);
    }

    Json json;

  private:
    template <typename Value>
    static Json jsonOf(const Value& value) {
        return value;
    }
    static Json jsonOf(const fs::path& path) { return path.string(); }
    static Json jsonOf(OBWDirection direction) { return keyOf(direction); }
    static Json jsonOf(Smoothing smoothing) { return keyOf(smoothing); }
    static Json jsonOf(const std::optional<FileIdentity>& file) {
        return file ? Json{{"path", file->path.string()},
                           {"bytes", file->bytes},
                           {"sha256", file->sha256}}
                    : Json();
    }
};

class Reader {
  public:
    explicit Reader(const Json& json) : mJson(json), mHasSchema(json.contains("schema")) {}

    template <typename Value>
    void operator()(const std::string& place, Value& value, Since since) const {
        const Json::json_pointer pointer(place);
        if (since != Since::Always && !mHasSchema)
            return;
        if (!mJson.contains(pointer))
            throw ToolError("it has no " + place.substr(1));
        if (!take(mJson[pointer], value))
            throw ToolError(place.substr(1) + " is nothing that a capture writes");
    }

  private:
    static bool take(const Json& json, bool& value) {
        value = json.is_boolean() && json.get<bool>();
        return json.is_boolean();
    }
    /// Counts: none is below 0.
    template <std::integral Count>
    static bool take(const Json& json, Count& value) {
        constexpr std::uint64_t most = std::numeric_limits<Count>::max();
        if (!json.is_number_unsigned() || json.get<std::uint64_t>() > most)
            return false;
        value = static_cast<Count>(json.get<std::uint64_t>());
        return true;
    }
    static bool take(const Json& json, double& value) {
        if (!json.is_number())
            return false;
        value = json.get<double>();
        return std::isfinite(value) && value >= 0;
    }
    static bool take(const Json& json, std::string& value) {
        value = json.is_string() ? json.get<std::string>() : "";
        return json.is_string();
    }
    static bool take(const Json& json, fs::path& value) {
        std::string text;
        const bool good = take(json, text);
        value = text;
        return good;
    }
    template <typename Named>
    static bool takeNamed(const Json& json, const Named& choice, auto& value) {
        const auto* found =
            std::ranges::find_if(choice, [&](auto one) { return json == keyOf(one); });
        if (found == std::end(choice))
            return false;
        value = *found;
        return true;
    }
    static bool take(const Json& json, OBWDirection& value) {
        return takeNamed(json, kCaptureDirections, value);
    }
    static bool take(const Json& json, Smoothing& value) {
        return takeNamed(json, kSmoothings, value);
    }
    static bool take(const Json& json, std::optional<FileIdentity>& value) {
        if (json.is_null())
            return true;
        FileIdentity& file = value.emplace();
        const auto has = [&](const char* key, auto& member) {
            return json.contains(key) && take(json[key], member);
        };
        return has("path", file.path) && has("bytes", file.bytes) && has("sha256", file.sha256);
    }

    const Json& mJson;
    bool mHasSchema;
};

}  // namespace

nlohmann::ordered_json toJson(const Summary& summary) {
    Writer writer;
    visitValues(summary, writer);
    Json json = std::move(writer.json);
    // What follows from other values, and where the files went, which nobody reads back.
    json["frameRate"]["sweep"] = kSweepRate;
    json["repeatedMotionWarning"] =
        unmeasuredWarning(summary.repeatedMotions, summary.frames).has_value();
    if (summary.steadiness)
        json["verdict"] = toJson(verdictOn(*summary.steadiness));
    json["outputs"] = {{"video", summary.sweepVideo.string()},
                       {"record", summary.sweepRecord.string()},
                       {"path", summary.sweepPath.string()},
                       {"summary", summary.sweepSummary.string()}};
    return json;
}

std::string toJsonText(const Summary& summary) {
    return jsonText(toJson(summary));
}

Summary parseSummary(std::string_view text) {
    try {
        const Json json = Json::parse(text);
        Summary summary;
        summary.schema = 0;
        summary.toolVersion.clear();
        const Reader reader(json);
        visitValues(summary, reader);
        if (summary.schema > kSummarySchema)
            throw ToolError("a later version wrote it (schema " + std::to_string(summary.schema) +
                            ")");
        return summary;
    } catch (const nlohmann::json::exception& error) {
        throw ToolError(error.what());
    }
}

}  // namespace orbitwalk::tool
