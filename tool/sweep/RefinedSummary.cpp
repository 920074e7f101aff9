#include "sweep/RefinedSummary.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "files/TextFile.h"
#include "sweep/Checksum.h"
#include "sweep/Degrees.h"
#include "terminal/Print.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

using Json = nlohmann::ordered_json;

/// Some thirty times what a refinement of the longest sweep writes.
constexpr std::size_t kLongestText = 1 << 20;
/// 1 did not say which video it belongs to.
constexpr int kSchema = 2;

Json residualJson(const refine::PathResidual& residual) {
    return {{"xPixels", residual.x},
            {"yPixels", residual.y},
            {"angleDegrees", degrees(residual.angle)}};
}

/// The values of a JSON object, each with its range.
class Fields {
  public:
    explicit Fields(const Json& json) : mJson(json) {}

    Fields inside(const char* key) const { return Fields(at(key)); }
    std::string text(const char* key) const { return at(key).get<std::string>(); }
    double number(const char* key, double most) const {
        const double value = at(key).get<double>();
        if (!(value >= 0 && value <= most))
            throw ToolError(std::string(key) + " is nothing that a refinement writes");
        return value;
    }
    int count(const char* key, int most) const { return countOf(at(key), key, most); }
    std::vector<int> counts(const char* key, int most) const {
        std::vector<int> values;
        for (const Json& value : at(key))
            values.push_back(countOf(value, key, most));
        return values;
    }
    refine::PathResidual residual(const char* key) const {
        constexpr double most = 1e9;
        const Fields fields = inside(key);
        return {fields.number("xPixels", most), fields.number("yPixels", most),
                radians(fields.number("angleDegrees", most))};
    }

  private:
    static int countOf(const Json& value, const char* key, int most) {
        if (!value.is_number_unsigned() || value.get<std::uint64_t>() > static_cast<unsigned>(most))
            throw ToolError(std::string(key) + " is nothing that a refinement writes");
        return value.get<int>();
    }
    const Json& at(const char* key) const { return mJson.at(key); }

    const Json& mJson;
};

RefinedSummary summaryFrom(const Fields& json) {
    constexpr int mostPixels = 32767;
    constexpr double mostSeconds = 1e9;
    if (const int schema = json.count("schema", 1000); schema != kSchema)
        throw ToolError(schema > kSchema ? "a later version wrote it"
                                         : "an earlier version wrote it: refine the sweep again");
    RefinedSummary s;
    s.toolVersion = json.text("toolVersion");
    s.video = json.text("video");
    s.size = {json.count("width", mostPixels), json.count("height", mostPixels)};
    s.frames = json.count("frames", OBW_MAX_FRAMES);
    s.rendered = json.count("rendered", OBW_MAX_FRAMES);
    const Fields crop = json.inside("crop");
    s.crop = {crop.count("x", mostPixels), crop.count("y", mostPixels),
              crop.count("width", mostPixels), crop.count("height", mostPixels)};
    s.keep = json.number("keep", 1);
    s.viewKept = json.number("viewKept", 1);
    s.before = json.residual("residualBefore");
    s.after = json.residual("residualAfter");
    s.unmeasured = json.counts("unmeasuredFrames", OBW_MAX_FRAMES);
    const Fields seconds = json.inside("seconds");
    s.seconds = {seconds.number("measure", mostSeconds), seconds.number("plan", mostSeconds),
                 seconds.number("total", mostSeconds)};
    const Fields sums = json.inside("checksums");
    s.engineVideo = sums.text("engineVideo");
    s.engineRecord = sums.text("engineRecord");
    s.motions = sums.text("motions");
    s.record = sums.text("record");
    return s;
}

void requireSame(const std::filesystem::path& file, const std::string& sum) {
    if (sha256OfFile(file) != sum)
        throw ToolError(file.string() + " is not the one that " + kRefinedSummaryName +
                        " beside it was written with: refine the sweep again");
}

}  // namespace

Steadiness steadinessOf(const RefinedSummary& s) {
    return {s.before, s.after, s.viewKept, static_cast<int>(s.unmeasured.size()), s.frames};
}

std::string toText(const RefinedSummary& s) {
    char text[800];
    std::snprintf(
        text, sizeof text,
        "frames            %d of %dx%d, %d rendered, %zu unmeasured\n"
        "measured in       %s\n"
        "crop              %dx%d at %d,%d: %.1f %% of width and height, %.1f %% of the view kept\n"
        "residual motion   %.2f px, %.3f deg as recorded; %.2f px, %.3f deg refined\n"
        "seconds           measure %.2f, plan %.3f, total %.2f\n",
        s.frames, s.size.width, s.size.height, s.rendered, s.unmeasured.size(), s.video.c_str(),
        s.crop.width, s.crop.height, s.crop.x, s.crop.y, 100 * s.keep, 100 * s.viewKept,
        s.before.shift(), degrees(s.before.angle), s.after.shift(), degrees(s.after.angle),
        s.seconds.measure, s.seconds.plan, s.seconds.total);
    return text + ("verdict           " + verdictOn(steadinessOf(s)).text) + "\n";
}

nlohmann::ordered_json toJson(const RefinedSummary& s) {
    return {
        {"schema", kSchema},
        {"tool", "orbitwalk refine"},
        {"toolVersion", s.toolVersion},
        {"video", s.video},
        {"width", s.size.width},
        {"height", s.size.height},
        {"frames", s.frames},
        {"rendered", s.rendered},
        {"crop",
         {{"x", s.crop.x}, {"y", s.crop.y}, {"width", s.crop.width}, {"height", s.crop.height}}},
        {"keep", s.keep},
        {"viewKept", s.viewKept},
        {"residualBefore", residualJson(s.before)},
        {"residualAfter", residualJson(s.after)},
        {"unmeasuredFrames", s.unmeasured},
        {"verdict", toJson(verdictOn(steadinessOf(s)))},
        {"seconds",
         {{"measure", s.seconds.measure}, {"plan", s.seconds.plan}, {"total", s.seconds.total}}},
        {"checksums",
         {{"engineVideo", s.engineVideo},
          {"engineRecord", s.engineRecord},
          {"motions", s.motions},
          {"record", s.record}}}};
}

std::string toJsonText(const RefinedSummary& summary) {
    return jsonText(toJson(summary));
}

RefinedSummary parseRefinedSummary(std::string_view text) {
    try {
        const Json json = Json::parse(text);
        return summaryFrom(Fields(json));
    } catch (const nlohmann::json::exception& error) {
        throw ToolError(error.what());
    }
}

RefinedSummary openRefinedSummary(const SweepFiles& files) {
    const std::string text = readTextFile(files.refinedSummary, kLongestText);
    RefinedSummary summary;
    try {
        summary = parseRefinedSummary(text);
    } catch (const ToolError& error) {
        throw ToolError(files.refinedSummary.string() +
                        ": no summary of a refinement: " + error.what());
    }
    requireSame(files.video, summary.engineVideo);
    requireSame(files.record, summary.engineRecord);
    requireSame(files.refinedPath, summary.motions);
    requireSame(files.refinedRecord, summary.record);
    return summary;
}

}  // namespace orbitwalk::tool
