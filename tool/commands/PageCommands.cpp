#include <cstdio>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "commands/Commands.h"
#include "files/OutputFiles.h"
#include "files/OwnFiles.h"
#include "files/TextFile.h"
#include "player/PlayerPage.h"
#include "report/ReportData.h"
#include "report/ReportPage.h"
#include "sweep/Sweep.h"
#include "sweep/SweepFiles.h"
#include "terminal/Print.h"
#include "terminal/ProgressBar.h"
#include "terminal/SignalGuard.h"

/// The commands that write one web page about a sweep: player and report.
namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;

struct PageOptions {
    fs::path directory;
    fs::path page;
    bool refined = false;
    CommonOptions common;
};

struct Page {
    std::string html;
    int frames = 0;
    std::optional<Verdict> verdict;  ///< Told where the page tells it.
};

std::string videoOf(const Sweep& sweep) {
    return readTextFile(sweep.files.video, kEmbeddedVideoLimit);
}

std::string recordOf(const Sweep& sweep) {
    return readTextFile(sweep.refinement ? sweep.files.refinedRecord : sweep.files.record);
}

Page playerOf(const Sweep& sweep) {
    const std::string name =
        sweep.summary ? fs::path(sweep.summary->video).filename().string() : "";
    return {playerPage(name.empty() ? "Sweep" : name, videoOf(sweep), recordOf(sweep)),
            sweep.record.frameCount(),
            {}};
}

Page reportOn(const Sweep& sweep) {
    const ReportData data = reportData(sweep);
    ProgressBar bar("Reading", data.summary.rendered);
    const ReportPictures pictures = reportPictures(sweep, data.cropView.frame, [&](int done) {
        bar.update(done);
        SignalGuard::check();
    });
    return {reportPage({reportJson(data, pictures), videoOf(sweep), recordOf(sweep)}),
            sweep.record.frameCount(), verdictOn(data.steadiness)};
}

/// @param what  what the page is, before the number of frames.
void printPage(const char* command, const char* what, const PageOptions& options,
               const Page& page) {
    nlohmann::ordered_json json{{command, options.page.string()}, {"frames", page.frames}};
    if (page.verdict)
        json["verdict"] = toJson(*page.verdict);
    json["bytes"] = page.html.size();
    char facts[80];
    std::snprintf(facts, sizeof facts, ": %s %d frames, %.1f MB\n", what, page.frames,
                  static_cast<double>(page.html.size()) / 1e6);
    printSummary(options.common, jsonText(json),
                 shown(options.page) + facts + (page.verdict ? page.verdict->text + "\n" : ""));
}

Page writePage(const PageOptions& options, Page (*pageOf)(const Sweep&)) {
    requireExtension("--output", options.page, {".html", ".htm"});
    refuseTakenNames(options.directory, {options.page});
    const SignalGuard signals;
    const Sweep sweep =
        openSweep(options.directory, options.refined ? RecordBy::Refinement : RecordBy::Engine);
    OutputFiles files(options.common.force);
    std::FILE* const stream = files.create(options.page);
    Page page = pageOf(sweep);
    files.append(stream, page.html);
    SignalGuard::check();
    files.commit();
    return page;
}

std::shared_ptr<PageOptions> addPageOptions(CLI::App& command, const char* directory) {
    const auto options = std::make_shared<PageOptions>();
    command.add_option("DIR", options->directory, directory)->required();
    command
        .add_option("-o,--output", options->page,
                    "Page to write, HTML; it needs no other file and no network")
        ->required();
    command.add_flag("--refined", options->refined, kRefinedHelp);
    addCommonOptions(command, options->common, Writes::Files);
    return options;
}

}  // namespace

void addPlayerCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "player", "Write one web page that plays a captured sweep, steady, in any browser");
    const auto options = addPageOptions(*command, "What capture wrote: sweep.mp4 and .obw");
    command->callback(
        [options] { printPage("player", "player of", *options, writePage(*options, playerOf)); });
}

void addReportCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "report", "Write one web page about a captured sweep: paths, corrections, crop, pictures");
    const auto options = addPageOptions(
        *command, "What capture wrote: sweep.mp4, .obw, .csv and, for the times, .json");
    command->callback(
        [options] { printPage("report", "report on", *options, writePage(*options, reportOn)); });
}

}  // namespace orbitwalk::tool
