#include "batch/BatchSummary.h"

#include <poll.h>

#include <algorithm>
#include <cstdio>

#include "batch/ClipFolder.h"
#include "files/OutputFiles.h"
#include "files/OwnFiles.h"
#include "sweep/Summary.h"
#include "terminal/Print.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr int kBatchSchema = 1;
/// Before every line that a command prints on stderr.
constexpr std::string_view kProgramPrefix = "orbitwalk: ";

/// A clip's sidecar tells what it was made of; its inputs are not read again for a summary.
bool isOf(const Json& sidecar, const Clip& clip) {
    const Json wanted = toJson(ClipJob{clip, {}});
    return std::ranges::all_of(
        std::initializer_list<const char*>{"id", "video", "options"},
        [&](const char* key) { return sidecar.contains(key) && sidecar[key] == wanted[key]; });
}

ClipReport reportOf(const Clip& clip, const ClipFolder& names) {
    ClipReport report{clip.id, clip.video, ClipState::Waiting, {}, {}};
    const auto failure = names.failure();
    const auto sidecar = names.sidecar();
    if (failure) {
        report.state = ClipState::Failed;
        report.error = lastLineOf(*failure);
        if (report.error.starts_with(kProgramPrefix))
            report.error.erase(0, kProgramPrefix.size());
    } else if (sidecar && isOf(*sidecar, clip)) {
        report.state = ClipState::Done;
        report.result = (*sidecar)["result"];
    }
    return report;
}

std::string cell(const Json& value) {
    if (value.is_null())
        return "";
    return value.is_string() ? value.get<std::string>() : value.dump();
}

/// Of a verdict; empty cells without one.
std::string verdictCells(const Json& result, const char* key) {
    const Json verdict = result.is_object() ? result.value(key, Json()) : Json();
    std::string cells;
    for (const char* name : {"steadier", "residualShare", "viewKept"})
        cells += ',' + (verdict.is_object() ? cell(verdict.value(name, Json())) : "");
    return cells;
}

NameLock lockOnSummary(const fs::path& batch) {
    for (;;) {
        if (auto lock = NameLock::take(workFolder(batch) / "summary.lock"))
            return *std::move(lock);
        SignalGuard::check();
        poll(nullptr, 0, kSignalPollMilliseconds);
    }
}

/// Empty text as an empty cell.
std::string csvCell(std::string_view text) {
    if (text.empty())
        return "";
    std::string result = "\"";
    for (const char c : shown(text))
        result += c == '"' ? std::string("\"\"") : std::string(1, c);
    return result + '"';
}

}  // namespace

const char* nameOf(ClipState state) {
    switch (state) {
        case ClipState::Done:
            return "done";
        case ClipState::Failed:
            return "failed";
        case ClipState::Waiting:
            break;
    }
    return "waiting";
}

std::string_view lastLineOf(std::string_view text) {
    while (text.ends_with('\n'))
        text.remove_suffix(1);
    const std::size_t start = text.rfind('\n');
    return start == std::string_view::npos ? text : text.substr(start + 1);
}

std::vector<ClipReport> reportsOf(const std::vector<Clip>& clips, const fs::path& batch) {
    std::vector<ClipReport> reports;
    for (const Clip& clip : clips)
        reports.push_back(reportOf(clip, ClipFolder(batch, clip.id)));
    return reports;
}

std::string toCsv(const std::vector<ClipReport>& reports) {
    std::string csv{kBatchTableHeader};
    csv += '\n';
    for (const ClipReport& report : reports) {
        csv += report.id + ',' + nameOf(report.state) + ',';
        csv += report.result.is_object() ? cell(report.result.value("frames", Json())) : "";
        csv += verdictCells(report.result, "verdict") + verdictCells(report.result, "refined");
        csv += ',' + csvCell(report.error) + '\n';
    }
    return csv;
}

std::string toJsonText(const std::vector<ClipReport>& reports) {
    Json clips = Json::array();
    for (const ClipReport& report : reports) {
        Json clip{{"id", report.id}, {"video", report.video}, {"state", nameOf(report.state)}};
        if (report.state == ClipState::Done)
            clip["result"] = report.result;
        if (report.state == ClipState::Failed)
            clip["error"] = report.error;
        clips.push_back(clip);
    }
    Json counts = Json::object();
    for (const ClipState state : {ClipState::Done, ClipState::Failed, ClipState::Waiting})
        counts[nameOf(state)] = std::ranges::count(reports, state, &ClipReport::state);
    return jsonText({{"schema", kBatchSchema},
                     {"toolVersion", toolVersion()},
                     {"counts", counts},
                     {"clips", clips}});
}

void writeBatchSummary(const std::vector<Clip>& clips, const fs::path& batch, bool force) {
    // Who reads last writes last: a clip that another run has just finished is not lost from it.
    const NameLock lock = lockOnSummary(batch);
    const std::vector<ClipReport> reports = reportsOf(clips, batch);
    OutputFiles outputs(force);
    outputs.write(batch / "summary.csv", toCsv(reports));
    outputs.write(batch / "index.html", indexPage(reports));
    outputs.write(batch / "summary.json", toJsonText(reports));
    SignalGuard::check();
    outputs.commit();
}

}  // namespace orbitwalk::tool
