#include <cstdio>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "commands/Commands.h"
#include "files/OutputFiles.h"
#include "files/OwnFiles.h"
#include "files/TextFile.h"
#include "player/PlayerPage.h"
#include "report/Pictures.h"
#include "report/ReportData.h"
#include "report/ReportPage.h"
#include "sweep/Sweep.h"
#include "sweep/SweepFiles.h"
#include "terminal/CommonOptions.h"
#include "terminal/Print.h"
#include "terminal/ProgressBar.h"
#include "terminal/SignalGuard.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;

struct ReportOptions {
    fs::path directory;
    fs::path page;
    bool refined = false;
    CommonOptions common;
};

ReportPictures readPictures(const Sweep& sweep, const ReportData& data) {
    ProgressBar bar("Reading", data.summary.rendered);
    return reportPictures(sweep, data.cropView.frame, [&](int done) {
        bar.update(done);
        SignalGuard::check();
    });
}

std::string pageOf(const Sweep& sweep, const ReportData& data) {
    const std::string json = reportJson(data, readPictures(sweep, data));
    const std::string video = readTextFile(sweep.files.video, kEmbeddedVideoLimit);
    const std::string record =
        readTextFile(sweep.refinement ? sweep.files.refinedRecord : sweep.files.record);
    return reportPage({json, video, record});
}

std::string summaryJson(const ReportOptions& options, const ReportData& data, std::size_t bytes) {
    const nlohmann::ordered_json summary{{"report", options.page.string()},
                                         {"frames", data.summary.frames},
                                         {"verdict", toJson(verdictOn(data.steadiness))},
                                         {"bytes", bytes}};
    // A file name may hold bytes that are not UTF-8; JSON cannot.
    return summary.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

std::string summaryText(const ReportOptions& options, const ReportData& data, std::size_t bytes) {
    char facts[80];
    std::snprintf(facts, sizeof facts, ": report on %d frames, %.1f MB\n", data.summary.frames,
                  static_cast<double>(bytes) / 1e6);
    return shown(options.page) + facts + verdictOn(data.steadiness).text + "\n";
}

void writeReport(const ReportOptions& options) {
    requireExtension("--output", options.page, {".html", ".htm"});
    refuseTakenNames(options.directory, {options.page});
    const SignalGuard signals;
    const Sweep sweep =
        openSweep(options.directory, options.refined ? RecordBy::Refinement : RecordBy::Engine);
    const ReportData data = reportData(sweep);
    OutputFiles files(options.common.force);
    std::FILE* const stream = files.create(options.page);
    const std::string page = pageOf(sweep, data);
    files.append(stream, page);
    SignalGuard::check();
    files.commit();
    printSummary(options.common, summaryJson(options, data, page.size()),
                 summaryText(options, data, page.size()));
}

}  // namespace

void addReportCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "report", "Write one web page about a captured sweep: paths, corrections, crop, pictures");
    const auto options = std::make_shared<ReportOptions>();
    command
        ->add_option("DIR", options->directory,
                     "What capture wrote: sweep.mp4, .obw, .csv and, for the times, .json")
        ->required();
    command
        ->add_option("-o,--output", options->page,
                     "Page to write, HTML; it needs no other file and no network")
        ->required();
    command->add_flag("--refined", options->refined, kRefinedHelp);
    addCommonOptions(*command, options->common, Writes::Files);
    command->callback([options] { writeReport(*options); });
}

}  // namespace orbitwalk::tool
