#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/TestDirectory.h"
#include "tool/RunTool.h"

namespace orbitwalk::tool {
namespace {

using test_support::contentOf;
using test_support::expectRefusal;
using test_support::runTool;
using test_support::ToolRun;

using Arguments = std::vector<std::string>;

Arguments smallClip(const Arguments& more) {
    Arguments all{"simulate", "--size", "160x128", "--frames", "6", "--speed", "3"};
    all.insert(all.end(), more.begin(), more.end());
    return all;
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

TEST(SimulateCommand, RefusesBadOptions) {
    const struct {
        Arguments arguments;
        std::string reason;
        int exitCode = 2;
    } cases[] = {
        {{"--size", "161x120"}, "even numbers"},
        {{"--size", "640x+480"}, "even numbers"},
        {{"--seed", "-1"}, "--seed: -1 is not a whole number"},
        {{"--rate", "0"}, "frames a second"},
        {{"--rate", "30/"}, "frames a second"},
        {{"--rate", "2000"}, "frames a second"},
        {{"--speed", "nan"}, "--speed"},
        {{"--frames", "0"}, "--frames"},
        {{"--frames", "2.5"}, "--frames"},
        {{"--direction", "up"}, "{bottom2top,left2right,right2left,top2bottom}"},
        {{"--quality", "20", "--bit-rate", "1000000"}, "--bit-rate"},
        {{"--frames", "100000"}, "too long", 1},
    };
    const test_support::TestDirectory dir;
    for (const auto& [more, reason, exitCode] : cases) {
        Arguments arguments{"simulate", "-o", dir / "clip.mp4"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        expectRefusal(runTool(arguments), reason, exitCode);
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
        int exitCode = 1;
    } cases[] = {
        {{dir / "none.jpg", "-o", clip}, "none.jpg: No such file"},
        {{folder, "-o", clip}, folder + ": Is a directory"},
        {{text, "-o", clip}, text + " is not a picture"},
        {{"-o", dir / "text/clip.mp4"}, "cannot write"},
        {{"-o", folder}, "cannot write " + folder},
        {{"-o", clip, "--truth", text}, "--truth: " + text + " does not end in .csv", 2},
        {{"-o", dir / "clip.avi"}, "clip.avi does not end in .mp4", 2},
        {{folder, "-o", folder}, "names of their own", 2},
    };
    for (const auto& [arguments, reason, exitCode] : cases) {
        expectRefusal(runTool(smallClip(arguments)), reason, exitCode);
        EXPECT_EQ(test_support::namesIn(dir / ""), (Arguments{"folder.mp4", "text"})) << reason;
    }
}

}  // namespace
}  // namespace orbitwalk::tool
