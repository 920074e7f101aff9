#include <cstdio>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "commands/Commands.h"
#include "files/OutputFiles.h"
#include "files/OwnFiles.h"
#include "files/TextFile.h"
#include "player/PlayerPage.h"
#include "sweep/Sweep.h"
#include "sweep/SweepFiles.h"
#include "terminal/CommonOptions.h"
#include "terminal/Print.h"
#include "terminal/SignalGuard.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;

struct PlayerOptions {
    fs::path directory;
    fs::path page;
    bool refined = false;
    CommonOptions common;
};

std::string titleOf(const Sweep& sweep) {
    const std::string name =
        sweep.summary ? fs::path(sweep.summary->video).filename().string() : "";
    return name.empty() ? "Sweep" : name;
}

std::string pageOf(const PlayerOptions& options, const Sweep& sweep) {
    const fs::path& record = options.refined ? sweep.files.refinedRecord : sweep.files.record;
    return playerPage(titleOf(sweep), readTextFile(sweep.files.video, kEmbeddedVideoLimit),
                      readTextFile(record));
}

std::string summaryJson(const PlayerOptions& options, const Sweep& sweep, std::size_t bytes) {
    const nlohmann::ordered_json summary{
        {"player", options.page.string()}, {"frames", sweep.record.frameCount()}, {"bytes", bytes}};
    // A file name may hold bytes that are not UTF-8; JSON cannot.
    return summary.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

std::string summaryText(const PlayerOptions& options, const Sweep& sweep, std::size_t bytes) {
    char facts[80];
    std::snprintf(facts, sizeof facts, ": player of %d frames, %.1f MB\n",
                  sweep.record.frameCount(), static_cast<double>(bytes) / 1e6);
    return shown(options.page) + facts;
}

void writePlayer(const PlayerOptions& options) {
    requireExtension("--output", options.page, {".html", ".htm"});
    refuseTakenNames(options.directory, {options.page});
    const SignalGuard signals;
    const Sweep sweep =
        openSweep(options.directory, options.refined ? RecordBy::Refinement : RecordBy::Engine);
    OutputFiles files(options.common.force);
    std::FILE* const stream = files.create(options.page);
    const std::string page = pageOf(options, sweep);
    files.append(stream, page);
    SignalGuard::check();
    files.commit();
    printSummary(options.common, summaryJson(options, sweep, page.size()),
                 summaryText(options, sweep, page.size()));
}

}  // namespace

void addPlayerCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "player", "Write one web page that plays a captured sweep, steady, in any browser");
    const auto options = std::make_shared<PlayerOptions>();
    command->add_option("DIR", options->directory, "What capture wrote: sweep.mp4 and .obw")
        ->required();
    command
        ->add_option("-o,--output", options->page,
                     "Page to write, HTML; it needs no other file and no network")
        ->required();
    command->add_flag("--refined", options->refined, kRefinedHelp);
    addCommonOptions(*command, options->common, Writes::Files);
    command->callback([options] { writePlayer(*options); });
}

}  // namespace orbitwalk::tool
