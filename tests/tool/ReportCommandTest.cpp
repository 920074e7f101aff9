#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>

#include "files/OwnFiles.h"
#include "support/TestDirectory.h"
#include "tool/AnalyticSweep.h"
#include "tool/RunTool.h"

namespace test_support {
namespace {

namespace fs = std::filesystem;
using orbitwalk::tool::sweepCsv;

class ReportCommand : public testing::Test {
  protected:
    ReportCommand() { sweep.write(input); }

    ToolRun report(const std::string& output, std::optional<long> fileSizeLimit = {}) const {
        return runTool({"report", input.string(), "-o", output}, {.fileSizeLimit = fileSizeLimit});
    }

    const AnalyticSweep sweep{};
    const TestDirectory directory;
    const fs::path input = directory / "sweep";
    const std::string page = (directory / "r.html").string();
};

TEST_F(ReportCommand, NeedsNoSummary) {
    const ToolRun run = report(page);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_NE(run.out.find("r.html: report on 10 frames"), std::string::npos) << run.out;
    EXPECT_NE(contentOf(page).find("\"captureKnown\":false"), std::string::npos);
    EXPECT_NE(run.out.find("teadier"), std::string::npos) << run.out;
}

/// A sweep.csv whose frames are all alike.
std::string pathOf(const std::string& row) {
    std::string text = "frame,x,y,a,flag,repeated\n";
    for (int i = 0; i < AnalyticSweep::frames; ++i)
        text += std::to_string(i) + ',' + row + '\n';
    return text;
}

TEST_F(ReportCommand, SaysInOneLineWhatIsWrongAndLeavesNothing) {
    struct Case {
        std::function<void()> damage;
        std::string output;
        const char* complaint;
        int exitCode = 1;
    };
    const auto nothing = [] {};
    const TestDirectory whole;
    fs::copy(input, whole / "sweep");
    const Case cases[] = {
        {[&] { writeFile(input / "sweep.obw", "short"); }, page, "not a motion record"},
        {[&] { writeFile(input / "sweep.csv", ""); }, page, "its first line is not frame,x"},
        {[&] { writeFile(input / "sweep.csv", pathOf("0,0,0,1,0")); }, page,
         "sweep.csv is of another sweep: the flag of frame 4 is 1, the record says 0"},
        {[&] { writeFile(input / "sweep.csv", sweepCsv(AnalyticSweep::measuredPath())); }, page,
         "sweep.csv is of another sweep: its path leads to"},
        {[&] { writeFile(input / "sweep.json", ""); }, page, "sweep.json: no summary of a capture"},
        {[&] { fs::remove(input / "sweep.csv"); }, page, "sweep.csv: No such file"},
        {[&] { writeFile(input / "sweep.json", "{\"video\": 3}\n"); }, page,
         "sweep.json: no summary of a capture"},
        {[&] { fs::create_directory(input / "sweep.json"); }, page, "sweep.json"},
        {[&] { fs::create_symlink("sweep.csv", input / "s.html"); }, input / "s.html",
         "that name is taken", 2},
        {[&] { fs::create_directory(input / "d.html"); }, input / "d.html", "Is a directory"},
        {nothing, input / "sweep.csv" / "r.html", "sweep.csv is not a directory"},
        {nothing, directory / "none" / "r.html", "there is no directory"},
        {[&] { writeFile(input / "mine.html", "<p>"); }, input / "mine.html",
         "orbitwalk did not write"},
    };
    for (const Case& c : cases) {
        fs::remove_all(input);
        fs::copy(whole / "sweep", input);
        c.damage();
        const ToolRun run = report(c.output);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.complaint;
        EXPECT_NE(run.err.find(c.complaint), std::string::npos) << run.err;
        EXPECT_EQ(std::ranges::count(run.err, '\n'), 1) << run.err;
        EXPECT_EQ(namesIn(directory / ""), std::vector<std::string>{"sweep"}) << c.complaint;
    }
}

TEST_F(ReportCommand, AFullDiskLeavesTheFormerPage) {
    const std::string former = "former, " + std::string(orbitwalk::tool::kMark);
    writeFile(page, former);
    const ToolRun run = report(page, 20000);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "orbitwalk: cannot write " + page + ": File too large\n");
    EXPECT_EQ(contentOf(page), former);
    EXPECT_EQ(namesIn(directory / ""), (std::vector<std::string>{"r.html", "sweep"}));
}

TEST_F(ReportCommand, PrintsJsonOrNothingWhenAsked) {
    const ToolRun run = runTool({"report", input.string(), "-o", page, "--json"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const auto summary = nlohmann::json::parse(run.out);
    EXPECT_EQ(summary.at("report"), page);
    EXPECT_EQ(summary.at("frames"), AnalyticSweep::frames);
    EXPECT_TRUE(summary.at("verdict").at("steadier").is_boolean());
    EXPECT_EQ(summary.at("bytes"), fs::file_size(page));
    const ToolRun quiet = runTool({"report", input.string(), "-o", page, "-q"});
    EXPECT_EQ(quiet.exitCode, 0) << "its own page needs no --force: " << quiet.err;
    EXPECT_EQ(quiet.out + quiet.err, "");
    writeFile(page, "mine");
    EXPECT_EQ(runTool({"report", input.string(), "-o", page, "--force"}).exitCode, 0);
}

TEST_F(ReportCommand, ASignalEndsTheWaitForAPipe) {
    ASSERT_EQ(mkfifo((input / "sweep.json").c_str(), 0600), 0);
    // The shell comes past the pipe when the tool has opened it, and keeps it open.
    const std::string pipe = (input / "sweep.json").string();
    const ToolRun run = runProgram(
        "/bin/sh", {"-c", toolPath() + " report " + input.string() + " -o " + page + " & exec 3>" +
                              pipe + "; kill -TERM $!; wait $!; exit $?"});
    EXPECT_EQ(run.exitCode, 128 + SIGTERM);
    EXPECT_EQ(run.err, "orbitwalk: interrupted (Terminated), nothing was kept\n");
    EXPECT_EQ(namesIn(directory / ""), std::vector<std::string>{"sweep"});
}

}  // namespace
}  // namespace test_support
