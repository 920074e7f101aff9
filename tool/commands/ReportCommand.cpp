#include <cstdio>
#include <filesystem>
#include <memory>

#include "commands/Commands.h"
#include "files/OutputFiles.h"
#include "report/Pictures.h"
#include "report/ReportData.h"
#include "report/ReportJson.h"
#include "report/ReportPage.h"
#include "sweep/Sweep.h"
#include "sweep/SweepFiles.h"
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
};

ReportPictures readPictures(const Sweep& sweep, const ReportData& data,
                            const SignalGuard& signals) {
    ProgressBar bar("Reading", data.rendered);
    return reportPictures(sweep, data.cropView.frame, [&](int done) {
        bar.update(done);
        signals.check();
    });
}

void writeReport(const ReportOptions& options) {
    refuseTakenNames(options.directory, {options.page});
    const SignalGuard signals;
    const Sweep sweep = openSweep(options.directory);
    const ReportData data = reportData(sweep.record, requirePath(sweep), sweep.summary);
    OutputFiles files(options.page.parent_path());
    std::FILE* const stream = files.create(options.page.filename());
    const std::string page = reportPage(reportJson(data, readPictures(sweep, data, signals)));
    files.append(stream, page);
    signals.check();
    files.commit();
    char facts[80];
    std::snprintf(facts, sizeof facts, ": report on %d frames, %.1f MB\n", data.frames,
                  static_cast<double>(page.size()) / 1e6);
    printOut(options.page.string() + facts);
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
    command->callback([options] { writeReport(*options); });
}

}  // namespace orbitwalk::tool
