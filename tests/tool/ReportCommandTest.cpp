#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>

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
        RunOptions options = usingPictureCodecs();
        options.fileSizeLimit = fileSizeLimit;
        return runTool({"report", input.string(), "-o", output}, options);
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
    EXPECT_NE(contentOf(page).find("\"capture\":null"), std::string::npos);
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
        {nothing, input / "sweep.json", "that name is taken"},
        {nothing, input, "cannot write"},
        {nothing, input / "sweep.csv" / "r.html", "cannot write"},
    };
    for (const Case& c : cases) {
        fs::remove_all(input);
        fs::copy(whole / "sweep", input);
        c.damage();
        const ToolRun run = report(c.output);
        EXPECT_EQ(run.exitCode, 1) << c.complaint;
        EXPECT_NE(run.err.find(c.complaint), std::string::npos) << run.err;
        EXPECT_EQ(std::ranges::count(run.err, '\n'), 1) << run.err;
        EXPECT_EQ(namesIn(directory / ""), std::vector<std::string>{"sweep"}) << c.complaint;
    }
}

TEST_F(ReportCommand, AFullDiskLeavesTheFormerPage) {
    writeFile(page, "former");
    const ToolRun run = report(page, 20000);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "orbitwalk: cannot write " + page + ": File too large\n");
    EXPECT_EQ(contentOf(page), "former");
    EXPECT_EQ(namesIn(directory / ""), (std::vector<std::string>{"r.html", "sweep"}));
}

}  // namespace
}  // namespace test_support
