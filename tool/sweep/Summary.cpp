#include "sweep/Summary.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <limits>
#include <nlohmann/json.hpp>

#include "files/TextFile.h"
#include "sweep/Checksum.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

/// A hundred times what a capture writes.
constexpr std::size_t kLongestSummary = 1 << 20;

[[gnu::format(printf, 1, 2)]] std::string line(const char* format, ...) {
    char text[512];
    va_list values;
    va_start(values, format);
    std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    return text;
}

struct NamedDirection {
    OBWDirection direction;
    const char* name;
};
constexpr NamedDirection kDirections[] = {{OBW_DIRECTION_LEFT2RIGHT, "left2right"},
                                          {OBW_DIRECTION_RIGHT2LEFT, "right2left"},
                                          {OBW_DIRECTION_TOP2BOTTOM, "vertical"}};
constexpr Smoothing kSmoothings[] = {Smoothing::Smoothed, Smoothing::FellBack,
                                     Smoothing::TooFewFrames};

const char* keyOf(OBWDirection direction) {
    return std::ranges::find(kDirections, direction, &NamedDirection::direction)->name;
}

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
    static bool take(const Json& json, OBWDirection& value) {
        for (const auto& [direction, name] : kDirections)
            if (json == name) {
                value = direction;
                return true;
            }
        return false;
    }
    static bool take(const Json& json, Smoothing& value) {
        const auto* found = std::ranges::find_if(
            kSmoothings, [&](Smoothing smoothing) { return json == keyOf(smoothing); });
        if (found == std::end(kSmoothings))
            return false;
        value = *found;
        return true;
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

void requireSame(const fs::path& file, const std::string& sum, const std::string& expected) {
    if (sum != expected)
        throw ToolError(file.string() + " is not the one that " + kSweepSummaryName +
                        " beside it was written with: the files are of different captures");
}

}  // namespace

std::string_view toolVersion() {
    return ORBITWALK_VERSION;
}

std::optional<FileIdentity> identityOf(const fs::path& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error))
        return std::nullopt;
    return FileIdentity{fs::absolute(file, error).lexically_normal(),
                        static_cast<std::int64_t>(fs::file_size(file, error)), sha256OfFile(file)};
}

SweepChecksums checksumsOf(const SweepFiles& files) {
    return {sha256OfFile(files.video), sha256OfFile(files.record), sha256OfFile(files.path)};
}

Trajectory pathExtent(std::span<const Trajectory> path) {
    if (path.empty())
        return {};
    const auto spread = [&](double Trajectory::*axis) {
        const auto [least, most] = std::ranges::minmax(path, {}, axis);
        return most.*axis - least.*axis;
    };
    return {spread(&Trajectory::x), spread(&Trajectory::y), spread(&Trajectory::a)};
}

void fillFigures(Summary& summary, const __kelOBWKDXMetaData& record,
                 std::span<const SweepRow> path) {
    std::vector<Trajectory> positions;
    for (const SweepRow& row : path)
        positions.push_back(row.position);
    summary.width = record.width;
    summary.height = record.height;
    summary.frames = record.numFrames;
    summary.first = record.startIndex;
    summary.last = std::min(record.endIndex, record.numFrames - 1);
    summary.skipped = static_cast<int>(
        std::ranges::count_if(path, [](const SweepRow& row) { return row.flag != 1; }));
    summary.rendered = renderedFrames(record);
    summary.direction =
        record.captureDirection > OBW_DIRECTION_RIGHT2LEFT    ? OBW_DIRECTION_TOP2BOTTOM
        : record.captureDirection == OBW_DIRECTION_RIGHT2LEFT ? OBW_DIRECTION_RIGHT2LEFT
                                                              : OBW_DIRECTION_LEFT2RIGHT;
    summary.extent = pathExtent(positions);
    summary.cropWidthShare = static_cast<double>(record.cropParam[2]) / record.width;
    summary.cropHeightShare = static_cast<double>(record.cropParam[3]) / record.height;
    summary.smoothing = smoothingOf(record);
    summary.repeatedMotions = static_cast<int>(std::ranges::count(path, true, &SweepRow::repeated));
}

std::string toText(const Summary& summary) {
    const StageSeconds& s = summary.seconds;
    return line("frames            %d of %dx%d, %d to %d rendered, %d skipped%s\n", summary.frames,
                summary.width, summary.height, summary.first, summary.last, summary.skipped,
                summary.truncated ? " (the video has more)" : "") +
           line("frame rate        %.2f frames/s, the sweep's %d\n", summary.videoRate,
                kSweepRate) +
           line("direction         %s\n", keyOf(summary.direction)) +
           line("path extent       %.1f x %.1f px\n", summary.extent.x, summary.extent.y) +
           line("crop kept         %.1f %% of the width, %.1f %% of the height\n",
                100 * summary.cropWidthShare, 100 * summary.cropHeightShare) +
           line("correction        %s\n", wordsOf(summary.smoothing)) +
           line("repeated motions  %d\n", summary.repeatedMotions) +
           (summary.steadiness ? "verdict           " + verdictOn(*summary.steadiness).text + "\n"
                               : "") +
           line(
               "seconds           decode %.2f, measure %.2f, feed %.2f, wait for encoder %.2f,\n"
               "                  finish video %.2f, smooth %.2f, render matrices %.2f, clean up "
               "%.2f, total %.2f\n",
               s.decode, s.measure, s.feed, s.waitForEncoder, s.finishVideo, s.smooth,
               s.renderMatrices, s.cleanUp, s.total) +
           "written           " + summary.sweepVideo.string() + "\n                  " +
           summary.sweepRecord.string() + "\n                  " + summary.sweepPath.string() +
           "\n                  " + summary.sweepSummary.string() + "\n";
}

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
    return toJson(summary).dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
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

std::optional<Summary> openSummary(const SweepFiles& files) {
    std::error_code cannotTell;
    if (!fs::exists(files.summary, cannotTell) && !cannotTell)
        return std::nullopt;
    const std::string text = readTextFile(files.summary, kLongestSummary);
    Summary summary;
    try {
        summary = parseSummary(text);
    } catch (const ToolError& error) {
        throw ToolError(files.summary.string() + ": no summary of a capture: " + error.what());
    }
    if (summary.schema == 0)
        return summary;
    const SweepChecksums sums = checksumsOf(files);
    requireSame(files.video, sums.video, summary.checksums.video);
    requireSame(files.record, sums.record, summary.checksums.record);
    requireSame(files.path, sums.path, summary.checksums.path);
    return summary;
}

}  // namespace orbitwalk::tool
