#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "simulate/Simulation.h"
#include "support/TestDirectory.h"
#include "support/VideoFile.h"
#include "tool/RunTool.h"

namespace orbitwalk::tool {
namespace {

using test_support::contentOf;
using test_support::runTool;
using test_support::ToolRun;

using Arguments = std::vector<std::string>;

Arguments smallClip(const Arguments& more) {
    Arguments all{"simulate", "--size", "160x128", "--frames", "6", "--speed", "3"};
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

void expectRefusal(const ToolRun& run, const std::string& reason) {
    EXPECT_GT(run.exitCode, 0) << reason;
    EXPECT_THAT(run.err, testing::HasSubstr(reason));
    EXPECT_EQ(run.out, "");
}

TEST(SimulateCommand, WritesTheSameClipAndTruthEveryTime) {
    const test_support::TestDirectory dir;
    for (const std::string name : {"a", "b"}) {
        const ToolRun run = runTool(
            smallClip({"-o", dir / (name + ".mp4"), "--truth", dir / (name + ".csv"), "--json"}));
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(nlohmann::json::parse(run.out).at("frames"), 6);
    }
    EXPECT_EQ(test_support::namesIn(dir / ""), (Arguments{"a.csv", "a.mp4", "b.csv", "b.mp4"}));
    EXPECT_FALSE(contentOf(dir / "a.mp4").empty());
    EXPECT_EQ(contentOf(dir / "a.mp4"), contentOf(dir / "b.mp4"));
    EXPECT_EQ(contentOf(dir / "a.csv"), contentOf(dir / "b.csv"));
}

TEST(SimulateCommand, EncodesTheRenderedFramesWithoutVisibleLoss) {
    const test_support::TestDirectory dir;
    ASSERT_EQ(runTool(smallClip({"-o", dir / "clip.mp4"})).exitCode, 0);
    SimulationSettings settings;
    settings.size = {160, 128};
    settings.frames = 6;
    settings.speed = 3;
    Simulation simulation(settings, {});
    const auto decoded = test_support::readVideo(dir / "clip.mp4");
    ASSERT_EQ(decoded.size(), 6u);
    test_support::Frame frame(simulation.frameBytes());
    for (int i = 0; i < 6; ++i) {
        simulation.render(i, frame);
        EXPECT_GT(cv::PSNR(decoded[i], frame), 42) << "dB, frame " << i;
    }
}

TEST(SimulateCommand, RefusesBadOptions) {
    const struct {
        Arguments arguments;
        std::string reason;
    } cases[] = {
        {{"--size", "161x120"}, "even numbers"},
        {{"--size", "big"}, "even numbers"},
        {{"--size", "640x 480"}, "even numbers"},
        {{"--size", "640x+480"}, "even numbers"},
        {{"--seed", "-1"}, "--seed: -1 is not a whole number"},
        {{"--rate", "0"}, "frames a second"},
        {{"--rate", "30/"}, "frames a second"},
        {{"--rate", "-5"}, "frames a second"},
        {{"--rate", "2000"}, "frames a second"},
        {{"--speed", "nan"}, "--speed"},
        {{"--frames", "0"}, "--frames"},
        {{"--frames", "2.5"}, "--frames"},
        {{"--direction", "up"}, "{bottom2top,left2right,right2left,top2bottom}"},
        {{"--quality", "20", "--bit-rate", "1000000"}, "--bit-rate"},
        {{"--frames", "100000"}, "too long"},
    };
    const test_support::TestDirectory dir;
    expectRefusal(runTool({"simulat"}),
                  "orbitwalk: there is no command simulat (see orbitwalk --help)\n");
    for (const auto& [more, reason] : cases) {
        Arguments arguments{"simulate", "-o", dir / "clip.mp4"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const ToolRun run = runTool(arguments);
        expectRefusal(run, reason);
        EXPECT_THAT(run.err, testing::StartsWith("orbitwalk: "));
        EXPECT_EQ(std::ranges::count(run.err, '\n'), 1) << run.err;
        EXPECT_LE(run.exitCode, 2);
        EXPECT_EQ(test_support::namesIn(dir / ""), Arguments{}) << reason;
    }
}

TEST(SimulateCommand, NamesAFileThatItCannotUseInOneLineAndLeavesNothingBehind) {
    const test_support::TestDirectory dir;
    test_support::writeFile(dir / "text", "no picture");
    std::filesystem::create_directory(dir / "folder.mp4");
    const std::string clip = dir / "clip.mp4", text = dir / "text", folder = dir / "folder.mp4";
    const struct {
        Arguments arguments;
        std::string reason;
    } cases[] = {
        {{dir / "none.jpg", "-o", clip}, "none.jpg: No such file"},
        {{folder, "-o", clip}, "cannot read " + folder},
        {{text, "-o", clip}, text + " is not a picture"},
        {{"-o", dir / "text/clip.mp4"}, "cannot write"},
        {{"-o", folder}, "cannot write " + folder},
        {{"-o", clip, "--truth", text}, "--truth: " + text + " does not end in .csv"},
        {{"-o", dir / "clip.avi"}, "clip.avi does not end in .mp4"},
        {{folder, "-o", folder}, "names of their own"},
    };
    for (const auto& [arguments, reason] : cases) {
        const ToolRun run = runTool(smallClip(arguments));
        expectRefusal(run, reason);
        EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
        EXPECT_EQ(test_support::namesIn(dir / ""), (Arguments{"folder.mp4", "text"})) << reason;
    }
}

TEST(SimulateCommand, LeavesNothingBehindWhenTheDiskIsFull) {
    const test_support::TestDirectory dir;
    test_support::RunOptions smallDisk;
    smallDisk.fileSizeLimit = 4096;
    const Arguments arguments{"-o", dir / "clip.mp4", "--truth", dir / "truth.csv"};
    expectRefusal(runTool(smallClip(arguments), smallDisk), "clip.mp4");
    EXPECT_EQ(test_support::namesIn(dir / ""), Arguments{});
}

}  // namespace
}  // namespace orbitwalk::tool
