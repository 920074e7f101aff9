#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <nlohmann/json.hpp>

#include "support/TestDirectory.h"
#include "support/VideoFile.h"
#include "sweep/Sweep.h"
#include "tool/PanVideo.h"
#include "tool/RunTool.h"

namespace {

using nlohmann::json;
using test_support::contentOf;
using test_support::namesIn;
using test_support::RunOptions;
using test_support::runTool;
using testing::HasSubstr;
using Names = std::vector<std::string>;

const Names kOutputs{"sweep.csv", "sweep.json", "sweep.mp4", "sweep.obw"};

/// A directory for the outputs and one that the tool has for its temporary files.
class CaptureCommand : public testing::Test {
  protected:
    CaptureCommand() { std::filesystem::create_directory(mDir / "tmp"); }
    ~CaptureCommand() override { EXPECT_EQ(namesIn(mDir / "tmp"), Names{}); }

    test_support::ToolRun capture(Names arguments, RunOptions options = {}) {
        options.environment["TMPDIR"] = mDir / "tmp";
        arguments.insert(arguments.begin(), "capture");
        if (std::ranges::find(arguments, "-o") == arguments.end())
            arguments.insert(arguments.end(), {"-o", mOut});
        return runTool(arguments, options);
    }

    std::string pan(const test_support::Pan& pan) {
        writePanVideo(mDir / "pan.mp4", pan);
        return mDir / "pan.mp4";
    }

    __kelOBWKDXMetaData record() {
        return orbitwalk::tool::readRecordFile(mDir / "out/sweep.obw").raw();
    }

    const test_support::TestDirectory mDir;
    const std::string mOut = mDir / "out";
};

/// The one line that a failure may print.
MATCHER_P(IsOneLineWith, text, "") {
    return arg.starts_with("orbitwalk: ") && arg.find('\n') == arg.size() - 1 &&
           arg.find(text) != std::string::npos;
}

TEST_F(CaptureCommand, TurnsAVideoIntoMp4RecordAndPath) {
    const auto run = capture({pan({.frames = 30, .stepX = -10}), "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    // An even pan cannot get steadier.
    EXPECT_THAT(run.err, IsOneLineWith("warning: Not steadier than recorded: 0.0"));
    EXPECT_EQ(namesIn(mDir / "out"), kOutputs);
    EXPECT_EQ(test_support::readVideo(mDir / "out/sweep.mp4").size(), 30u);
    const auto rows = contentOf(mDir / "out/sweep.csv");
    EXPECT_TRUE(rows.starts_with("frame,x,y,a,flag,repeated\n0,0,0,0,1,0\n")) << rows;
    EXPECT_EQ(std::ranges::count(rows, '\n'), 31);

    EXPECT_EQ(contentOf(mDir / "out/sweep.json"), run.out);
    const json summary = json::parse(run.out);
    EXPECT_EQ(summary.at("frames"), 30);
    EXPECT_EQ(summary.at("width"), 960);
    EXPECT_EQ(summary.at("height"), 720);
    EXPECT_EQ(summary.at("truncated"), false);
    EXPECT_EQ(summary.at("direction"), "left2right");
    EXPECT_NEAR(summary.at("pathExtent").at("x").get<double>(), 290, 20) << "px";
    EXPECT_EQ(summary.at("cropKept").at("width"), record().cropParam[2] / 960.0);
    EXPECT_EQ(summary.at("cropKept").at("height"), record().cropParam[3] / 720.0);
    EXPECT_EQ(summary.at("smoothing"), "smoothed");
    EXPECT_EQ(summary.at("rendered"), 30);
    EXPECT_LE(summary.at("repeatedMotions"), 3);
    EXPECT_EQ(summary.at("repeatedMotionWarning"), false);
    EXPECT_EQ(summary.at("verdict").at("steadier"), false);
    EXPECT_EQ(summary.at("outputs").at("record"), mOut + "/sweep.obw");
    double stages = 0;  // One after the other; decoding is beside them.
    for (const auto& [stage, seconds] : summary.at("seconds").items())
        stages += stage == "total" || stage == "decode" ? 0 : seconds.get<double>();
    EXPECT_GT(summary.at("seconds").at("total"), stages);
}

TEST_F(CaptureCommand, OptionsReachTheRecord) {
    const auto run = capture({pan({.width = 320, .height = 240, .frames = 12}), "--first", "2",
                              "--last", "9", "--skip", "4,6-7", "--orientation", "270",
                              "--front-flip", "--direction", "left2right"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("2 to 9 rendered, 3 skipped"));
    const auto record = this->record();
    EXPECT_EQ(record.startIndex, 2);
    EXPECT_EQ(record.endIndex, 9);
    EXPECT_EQ(record.orientation, 90);
    EXPECT_EQ(record.frontCameraFlipped, 1);
    EXPECT_EQ(record.captureDirection, 1);
    EXPECT_THAT(std::vector(record.renderFlag, record.renderFlag + 12),
                testing::ElementsAre(1, 1, 1, 1, 0, 1, 0, 0, 1, 1, 1, 1));
    EXPECT_THAT(contentOf(mDir / "out/sweep.csv"), testing::ContainsRegex("\n6,[^\n]*,0,[01]\n"));
}

TEST_F(CaptureCommand, StopsTakingFramesAtAThousandAndWarnsOfAPictureTooSmallToMeasure) {
    const auto run = capture({pan({.width = 64, .height = 48, .frames = 1002}), "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.err, HasSubstr("note: stopped taking frames at 1000"));
    EXPECT_THAT(run.err,
                HasSubstr("warning: the motion of 999 of 1000 frames could not be measured"));
    EXPECT_THAT(run.err, HasSubstr("warning: Not steadier than recorded"));
    const json summary = json::parse(run.out);
    EXPECT_EQ(summary.at("truncated"), true);
    EXPECT_EQ(summary.at("repeatedMotions"), 999);
    EXPECT_EQ(summary.at("repeatedMotionWarning"), true);
    EXPECT_EQ(record().numFrames, 1000);
    EXPECT_EQ(test_support::readVideo(mDir / "out/sweep.mp4").size(), 1000u);
}

TEST_F(CaptureCommand, SaysWhenNothingIsRenderedOrTooLittleToSmooth) {
    const std::string video = pan({.width = 64, .height = 48, .frames = 4});
    const auto smoothing = [&](Names options) {
        options.insert(options.begin(), {video, "--json"});
        const auto run = capture(options);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(run.err.find("renders no frame") != std::string::npos,
                  json::parse(run.out).at("rendered") == 0);
        return json::parse(run.out).at("smoothing");
    };
    EXPECT_EQ(smoothing({"--skip", "0-3"}), "tooFewFrames");
    EXPECT_EQ(smoothing({"--first", "2"}), "tooFewFrames");
    EXPECT_EQ(smoothing({"--first", "1"}), "smoothed");
}

TEST_F(CaptureCommand, NotesAnotherRateAndAnOddSize) {
    std::string y4m = "YUV4MPEG2 W65 H49 F60:1 C420jpeg\n";
    for (int i = 0; i < 3; ++i)
        y4m += "FRAME\n" + std::string(65 * 49 + 2 * 33 * 25, '\x80');
    test_support::writeFile(mDir / "odd.y4m", y4m);
    const auto run = capture({mDir / "odd.y4m", "--json"});
    EXPECT_THAT(run.err,
                HasSubstr("note: the video has 60 frames/s; the sweep plays them at 30\n"));
    EXPECT_THAT(run.err,
                HasSubstr("note: the video's last column or row is left out: the sweep is 64x48"));
    EXPECT_EQ(json::parse(run.out).at("frameRate"), json({{"video", 60}, {"sweep", 30}}));
}

TEST_F(CaptureCommand, SaysInOneLineWhatIsWrongAndLeavesNothing) {
    const std::string video = pan({.width = 64, .height = 48, .frames = 3});
    test_support::writeFile(mDir / "text.mp4", "not a video");
    test_support::writeFile(mDir / "empty.mp4", "");
    const struct {
        Names arguments;
        std::string says;
        int exitCode = 1;
    } cases[] = {
        {{mDir / "missing.mp4"}, "missing.mp4"},
        {{mDir / "text.mp4"}, "text.mp4"},
        {{mDir / "empty.mp4"}, "empty.mp4"},
        {{mDir / ""}, ""},
        {{video, "-o", mDir / "text.mp4/out"}, "text.mp4"},
        {{video, "-o", mDir / "text.mp4"}, "text.mp4 is not a directory"},
        {{video, "-o", ""}, "an empty name is no directory", 2},
        {{video, "--first", "3"}, "--first 3: the sweep has the frames 0 to 2", 2},
        {{video, "--last", "-1"}, "--last -1", 2},
        {{video, "--first", "2", "--last", "1"}, "--first 2 is after", 2},
        {{video, "--skip", "3"}, "--skip 3", 2},
        {{video, "--skip", "a"}, "no list of frames", 2},
        {{video, "--start", "soon"}, "--start: no time", 2},
        {{video, "--duration", "-1"}, "--duration", 2},
        {{video, "--start", "0.1"}, "leave no frame", 2},
        {{video, "--orientation", "180"}, "--orientation", 2},
    };
    for (const auto& c : cases) {
        const auto run = capture(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.says;
        EXPECT_THAT(run.err, IsOneLineWith(c.says));
        EXPECT_EQ(namesIn(mDir / ""), (Names{"empty.mp4", "pan.mp4", "text.mp4", "tmp"}));
    }
}

TEST_F(CaptureCommand, RefusesToReplaceItsSource) {
    const std::string video = pan({.width = 64, .height = 48, .frames = 3});
    std::filesystem::create_directory(mDir / "out");
    std::filesystem::rename(video, mDir / "out/sweep.mp4");
    const std::string before = contentOf(mDir / "out/sweep.mp4");
    const auto run = capture({mDir / "out/sweep.mp4"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, IsOneLineWith("would be replaced"));
    EXPECT_EQ(namesIn(mDir / "out"), Names{"sweep.mp4"});
    EXPECT_EQ(contentOf(mDir / "out/sweep.mp4"), before);
}

/// A short video leaves the encoder only when it is closed, which the engine's progress does not
/// show.
TEST_F(CaptureCommand, AFullDiskLeavesTheFormerCaptureAndNothingElse) {
    RunOptions full;
    full.fileSizeLimit = 20000;
    for (const int frames : {8, 40}) {
        SCOPED_TRACE(frames);
        const std::string video = pan({.width = 320, .height = 240, .frames = frames});
        const auto run = capture({video}, full);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_THAT(run.err,
                    IsOneLineWith("out/sweep.mp4: cannot write the video: File too large"));
        EXPECT_EQ(namesIn(mDir / ""), (Names{"pan.mp4", "tmp"}));

        ASSERT_EQ(capture({video}).exitCode, 0);
        const std::string before = contentOf(mDir / "out/sweep.mp4");
        EXPECT_EQ(capture({video}, full).exitCode, 1);
        EXPECT_EQ(namesIn(mDir / "out"), kOutputs);
        EXPECT_EQ(contentOf(mDir / "out/sweep.mp4"), before);
        std::filesystem::remove_all(mDir / "out");
    }
}

TEST_F(CaptureCommand, ASignalLeavesNothing) {
    const std::string video = pan({.width = 320, .height = 240, .frames = 60});
    for (const int signal : {SIGINT, SIGTERM}) {
        RunOptions options;
        options.signalAfter = "CalculatePrevToCurTransform : Frame[5]";
        options.signal = signal;
        const auto run = capture({video, "--realtime", "--log-level", "info"}, options);
        EXPECT_EQ(run.exitCode, 128 + signal);
        EXPECT_THAT(run.err, HasSubstr("orbitwalk: interrupted"));
        EXPECT_EQ(namesIn(mDir / ""), (Names{"pan.mp4", "tmp"}));
    }
}

TEST_F(CaptureCommand, ASignalEndsTheWaitForAPipe) {
    ASSERT_EQ(mkfifo((mDir / "pipe").c_str(), 0600), 0);
    const auto run = test_support::runProgram(
        "/usr/bin/timeout", {"--preserve-status", "-k", "5", "3", test_support::toolPath(),
                             "capture", mDir / "pipe", "-o", mOut});
    EXPECT_EQ(run.exitCode, 128 + SIGTERM);
    EXPECT_THAT(run.err, HasSubstr("orbitwalk: interrupted"));
}

TEST_F(CaptureCommand, TakesThePartThatStartAndDurationName) {
    const auto run = capture({pan({.width = 64, .height = 48, .frames = 30}), "--start", "0.2",
                              "--duration", "400ms", "--first", "2", "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const json summary = json::parse(run.out);
    EXPECT_EQ(summary.at("frames"), 12);
    EXPECT_EQ(summary.at("first"), 2);
    EXPECT_TRUE(summary.at("source").is_null()) << "its frames are not the video's";
    EXPECT_EQ(summary.at("complete"), true);
}

TEST_F(CaptureCommand, CompletesTheFilesWhenNoOneReadsTheLogAnyMore) {
    RunOptions options;
    options.signalAfter = "CalculatePrevToCurTransform : Frame[1]";
    options.signal = SIGPIPE;
    capture({pan({.width = 320, .height = 240}), "--log-level", "verbose"}, options);
    EXPECT_EQ(namesIn(mDir / "out"), kOutputs);
}

}  // namespace
