#include "batch/BatchSummary.h"

#include <algorithm>

#include "files/OwnFiles.h"
#include "files/PageText.h"

namespace orbitwalk::tool {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kPage = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; img-src 'self' file:; style-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="generator" content="{{mark}}">
<meta name="color-scheme" content="light dark">
<title>Batch of sweeps</title>
<style>
:root {
    color-scheme: light dark;
    --page: #f6f7f9; --card: #fff; --ink: #1c2128; --faint: #5d6673; --line: #d8dde4; --link: #1a5fb4;
    --alarm: #8f2a1d; --good: #1d6b45;
}
@media (prefers-color-scheme: dark) {
    :root {
        --page: #14171c; --card: #1c2027; --ink: #e4e8ee; --faint: #9aa5b4; --line: #343b46; --link: #8ab4f8;
        --alarm: #ffb4a6; --good: #93dbb5;
    }
}
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 1360px; padding: 24px; background: var(--page); color: var(--ink);
    font: 15px/1.5 system-ui, "Segoe UI", Roboto, "Noto Sans", Arial, sans-serif; }
h1 { margin: 0; font-size: 26px; }
p { margin: 0 0 8px; }
a { color: var(--link); }
.counts, .faint { color: var(--faint); }
ul { list-style: none; margin: 16px 0 0; padding: 0; display: grid; gap: 16px;
    grid-template-columns: repeat(auto-fill, minmax(min(100%, 400px), 1fr)); }
li { padding: 12px; border: 1px solid var(--line); border-radius: 10px; background: var(--card); overflow-wrap: anywhere; }
h2 { margin: 0 0 4px; font-size: 16px; }
img { display: block; width: 100%; height: auto; margin: 0 0 8px; border-radius: 4px; }
.good { color: var(--good); }
.not { color: var(--alarm); }
</style>
</head>
<body>
<h1>Batch of sweeps</h1>
<p class="counts">{{counts}} The same as a table: <a href="summary.csv">summary.csv</a>, <a href="summary.json">summary.json</a>.</p>
<ul>
{{clips}}</ul>
</body>
</html>
)";

std::string sentenceOf(const Json& verdict) {
    const Json text = verdict.value("text", Json());
    return text.is_string() ? escaped(text.get<std::string>()) : "";
}

/// What came of the record that the pages show, the refined one where there is one; then the
/// engine's.
std::string verdictLines(const Json& result) {
    const Json engine = result.value("verdict", Json()), refined = result.value("refined", Json());
    const Json& played = refined.is_object() ? refined : engine;
    if (!played.is_object())
        return {};
    const bool steadier = played.value("steadier", Json()) == Json(true);
    std::string lines = std::string("<p class=\"") + (steadier ? "good" : "not") + "\">" +
                        sentenceOf(played) + "</p>\n";
    if (refined.is_object() && engine.is_object())
        lines += "<p class=\"faint\">Before the refinement: " + sentenceOf(engine) + "</p>\n";
    return lines;
}

std::string itemOf(const ClipReport& report) {
    // An id is a name for a folder without anything that markup or an address would take otherwise.
    const std::string& id = report.id;
    std::string item = "<li>\n<h2>" + id + "</h2>\n";
    switch (report.state) {
        case ClipState::Done:
            item += "<a href=\"" + id + "/report.html\"><img loading=\"lazy\" src=\"" + id +
                    "/strip.png\" alt=\"Frames of " + id + " as recorded and steady\"></a>\n";
            item += verdictLines(report.result);
            item += "<a href=\"" + id + "/player.html\">Play " + id + "</a>, <a href=\"" + id +
                    "/report.html\">report on " + id + "</a>\n";
            break;
        case ClipState::Failed:
            item += "<p class=\"not\">Failed: " + escaped(report.error) + "</p>\n<a href=\"" + id +
                    ".error.txt\">What was said of " + id + "</a>\n";
            break;
        case ClipState::Waiting:
            item += "<p class=\"faint\">Not made yet.</p>\n";
            break;
    }
    return item + "</li>\n";
}

std::string countsOf(const std::vector<ClipReport>& reports) {
    std::string text = std::to_string(reports.size()) + " clips:";
    const char* separator = " ";
    for (const ClipState state : {ClipState::Done, ClipState::Failed, ClipState::Waiting}) {
        const auto count = std::ranges::count(reports, state, &ClipReport::state);
        text += separator + std::to_string(count) + ' ' + nameOf(state);
        separator = ", ";
    }
    return text + '.';
}

}  // namespace

std::string indexPage(const std::vector<ClipReport>& reports) {
    std::vector<ClipReport> sorted = reports;
    std::stable_partition(sorted.begin(), sorted.end(), [](const ClipReport& report) {
        return report.state == ClipState::Failed;
    });
    std::string clips;
    for (const ClipReport& report : sorted)
        clips += itemOf(report);
    return filledPage(
        kPage, {{"mark", std::string(kMark)}, {"counts", countsOf(reports)}, {"clips", clips}});
}

}  // namespace orbitwalk::tool
