#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>

#include "evaluate/SweepFacts.h"
#include "support/SampleRecord.h"
#include "support/TestDirectory.h"
#include "support/VideoFile.h"
#include "tool/AnalyticSweep.h"
#include "tool/EvaluateScene.h"
#include "tool/RunTool.h"

using namespace test_support;
using testing::HasSubstr;

namespace {

void writePictures(const std::filesystem::path& file, const std::vector<cv::Mat1b>& pictures) {
    orbitwalk::media::EncoderSettings settings;
    settings.width = pictureSize().width;
    settings.height = pictureSize().height;
    settings.quality = 8;
    writeVideo(file, settings, static_cast<int>(pictures.size()), [&](int i) {
        const cv::Mat1b& luma = pictures[i];
        Frame i420(luma.total() * 3 / 2, 128);
        std::copy(luma.begin(), luma.end(), i420.begin());
        return i420;
    });
}

std::vector<cv::Mat1b> flat(int frames) {
    return std::vector<cv::Mat1b>(frames, cv::Mat1b(pictureSize(), 90));
}

/// A pan that jumps to and fro by 2 pixels: the second difference is 8 pixels.
std::vector<cv::Mat1b> jumpyPan(int frames) {
    std::vector<cv::Mat1b> pictures;
    for (int k = 0; k < frames; ++k)
        pictures.push_back(takePicture({5.0 * k + (k % 2 ? 2 : -2), 0}));
    return pictures;
}

/// The same without the jumps, enlarged.
std::vector<cv::Mat1b> steadyPan(int frames) {
    std::vector<cv::Mat1b> pictures;
    for (int k = 0; k < frames; ++k)
        pictures.push_back(takePicture({5.0 * k, 0, 0, 1.25}));
    return pictures;
}

}  // namespace

TEST(EvaluateCommand, JudgesASteadyVideoBesideItsSource) {
    const TestDirectory directory;
    writePictures(directory / "clip.mp4", jumpyPan(10));
    writePictures(directory / "steady.mp4", steadyPan(10));
    const ToolRun run = runTool({"evaluate", "--video", directory / "steady.mp4", "--against",
                                 directory / "clip.mp4", "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto video = nlohmann::json::parse(run.out).at("video");
    EXPECT_EQ(video.at("frames"), 10);
    EXPECT_EQ(video.at("blackPixels"), 0);
    EXPECT_NEAR(video.at("residualMotion").at("xPixels"), 0, 0.1);
    const auto source = video.at("source");
    EXPECT_NEAR(source.at("residualMotion").at("xPixels"), 8, 0.1);
    EXPECT_NEAR(source.at("keptView"), 0.64, 0.005);
    EXPECT_NEAR(source.at("mostBeyondSource"), 0, 1e-6);
    EXPECT_NEAR(source.at("sharpness"), 1, 0.05);
    EXPECT_EQ(source.at("missingPixels"), 0);
    const auto verdict = nlohmann::json::parse(run.out).at("verdict");
    EXPECT_TRUE(verdict.at("steadier"));
    EXPECT_NEAR(verdict.at("residualShare"), 0, 0.02);
    EXPECT_NEAR(verdict.at("viewKept"), 0.64, 0.005);
    const ToolRun worse = runTool(
        {"evaluate", "--video", directory / "clip.mp4", "--against", directory / "steady.mp4"});
    EXPECT_THAT(worse.out, HasSubstr("verdict by the pictures: Not steadier than recorded: "));
    EXPECT_EQ(source.at("unregistered"), 0);
}

TEST(EvaluateCommand, MeasuresACaptureAgainstItsTruth) {
    const TestDirectory directory;
    const std::string clip = directory / "clip.mp4", truth = directory / "truth.csv";
    const std::string sweep = directory / "sweep", steady = directory / "steady.mp4";
    ASSERT_EQ(
        runTool({"simulate", "-o", clip, "--truth", truth, "--size", "960x540", "--frames", "12"})
            .exitCode,
        0);
    ASSERT_EQ(runTool({"capture", clip, "-o", sweep}).exitCode, 0);
    ASSERT_EQ(runTool({"render", sweep, "-o", steady}).exitCode, 0);
    const ToolRun run = runTool({"evaluate", sweep, "--truth", truth, "--video", steady, "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto result = nlohmann::json::parse(run.out);
    EXPECT_EQ(result.at("sweep").at("frames"), 12);
    EXPECT_EQ(result.at("sweep").at("missingPixels"), 0);
    // A wrong sign would give 200, a wrong axis 100. What is left is the engine's own error.
    EXPECT_NEAR(result.at("path").at("driftPer100Pixels").at("along"), 0, 15);
    EXPECT_GT(result.at("path").at("travelledPixels"), 11 * 12 * 0.8);
    // What the record says is kept is what the registration of the pictures finds.
    EXPECT_NEAR(result.at("video").at("source").at("keptView"), result.at("sweep").at("keptView"),
                0.02);
    EXPECT_EQ(result.at("verdict").at("viewKept"), result.at("video").at("source").at("keptView"));
    ASSERT_EQ(runTool({"refine", sweep}).exitCode, 0);
    const auto both =
        nlohmann::json::parse(runTool({"evaluate", sweep, "--refined", "--json"}).out);
    EXPECT_EQ(both.at("sweep").at("keptView"), result.at("sweep").at("keptView"));
    EXPECT_TRUE(both.at("refined").at("verdict").at("steadier"));
    EXPECT_EQ(both.at("verdict"), both.at("refined").at("verdict"));
    EXPECT_NE(both.at("verdict"), both.at("sweep").at("verdict"));
    const ToolRun text = runTool({"evaluate", sweep, "--truth", truth});
    EXPECT_THAT(text.out, HasSubstr("missing pixels inside the crop: 0;"));
    EXPECT_THAT(text.out, HasSubstr("drift per 100 pixels"));
    writeFile(truth, "frame,dx,dy,da,x,y,a\n0,0,0,0,0,0,0\n");
    EXPECT_THAT(runTool({"evaluate", sweep, "--truth", truth}).err,
                HasSubstr("it has 1 frames, the sweep has 12"));
}

TEST(EvaluateCommand, SaysPlainlyThatTheMotionCouldNotBeMeasured) {
    const TestDirectory directory;
    const AnalyticSweep sweep;
    sweep.write(directory / "sweep");
    std::string path = contentOf(directory / "sweep/sweep.csv");
    std::size_t rows = 0;  // All but the first repeat the last motion.
    for (std::size_t end = path.find('\n'); end + 1 < path.size(); ++rows) {
        end = path.find('\n', end + 1);
        path[end - 1] = rows > 0 ? '1' : '0';
    }
    writeFile(directory / "sweep/sweep.csv", path);
    const ToolRun run = runTool({"evaluate", directory / "sweep", "--json"});
    const auto verdict = nlohmann::json::parse(run.out).at("verdict");
    EXPECT_FALSE(verdict.at("steadier"));
    EXPECT_THAT(verdict.at("text").get<std::string>(),
                HasSubstr("the motion could not be measured"));
}

TEST(EvaluateCommand, JudgesARenderingMirroredAsThePreviewWas) {
    const TestDirectory directory;
    const AnalyticSweep sweep;
    const std::string input = directory / "sweep", steady = directory / "steady.mp4";
    sweep.write(input);
    auto record = sweep.record();
    record.frontCameraFlipped = 1;
    sweep.writeRecord(directory / "sweep/sweep.obw", record);
    ASSERT_EQ(runTool({"render", input, "-o", steady}).exitCode, 0);
    const ToolRun run = runTool({"evaluate", input, "--video", steady, "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto source = nlohmann::json::parse(run.out).at("video").at("source");
    EXPECT_EQ(source.at("unregistered"), 0);
    EXPECT_NEAR(source.at("keptView"), 256 * 192 / (320 * 240.0), 0.01);
}

TEST(EvaluateCommand, CountsNoBlackBorderAsViewKept) {
    const TestDirectory directory;
    cv::Mat1b picture = takePicture({});
    cv::max(picture, 60, picture);  // Dark places would explain black.
    cv::Mat1b moved(picture.size(), 16);
    const cv::Rect shown(64, 48, 480, 400);  // Shown 24 pixels further to the right.
    picture(shown).copyTo(moved(shown + cv::Point(24, 0)));
    writePictures(directory / "clip.mp4", {picture});
    writePictures(directory / "framed.mp4", {moved});
    const ToolRun run = runTool({"evaluate", "--video", directory / "framed.mp4", "--against",
                                 directory / "clip.mp4", "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto source = nlohmann::json::parse(run.out).at("video").at("source");
    EXPECT_NEAR(source.at("keptView"), 480 * 400 / (640 * 480.0), 0.005);
}

TEST(EvaluateCommand, SaysWhatItCouldNotMeasure) {
    const TestDirectory directory;
    const std::string clip = directory / "clip.mp4";
    writePictures(clip, flat(3));
    EXPECT_THAT(runTool({"evaluate", "--video", clip}).out,
                HasSubstr("residual motion: not measured"));
    EXPECT_THAT(runTool({"evaluate", "--video", clip}).out, HasSubstr("\nverdict: none"));
    // Found in its source, but in none of the frames whose sharpness is looked at.
    auto pictures = flat(1);
    pictures.push_back(takePicture({}));
    writePictures(clip, pictures);
    const ToolRun run = runTool({"evaluate", "--video", clip, "--against", clip, "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto video = nlohmann::json::parse(run.out).at("video");
    EXPECT_TRUE(video.at("residualMotion").is_null());
    EXPECT_TRUE(nlohmann::json::parse(run.out).at("verdict").at("residualShare").is_null());
    EXPECT_TRUE(video.at("source").at("residualMotion").is_null());
    EXPECT_TRUE(video.at("source").at("sharpness").is_null());
    EXPECT_NEAR(video.at("source").at("keptView"), 1, 0.005);
    EXPECT_NEAR(video.at("source").at("leastKeptView"), 1, 0.005);
}

TEST(EvaluateCommand, RefusesWhatItCannotJudgeInOneLine) {
    const TestDirectory directory;
    const std::string clip = directory / "clip.mp4", longer = directory / "longer.mp4";
    writePictures(clip, steadyPan(3));
    writePictures(longer, steadyPan(4));
    writeFile(directory / "text.mp4", "no video");
    const std::string grey = directory / "grey.mp4", sweep = directory / "sweep";
    writePictures(grey, flat(3));
    const AnalyticSweep analytic;
    analytic.write(sweep);
    const std::string other = directory / "other";
    analytic.write(other);
    writeFile(directory / "other/sweep.csv", orbitwalk::tool::sweepCsv(analytic.measuredPath()));
    const std::string whole = directory / "whole.mp4", tenFrames = directory / "ten.mp4";
    analytic.writeVideo(tenFrames, 10);
    analytic.writeVideo(whole, 9);  // As many as a rendering has.
    analytic.writeVideo(directory / "sweep/sweep.mp4", 12);
    const struct {
        std::vector<std::string> arguments;
        const char* reason;
        int exitCode = 1;
    } cases[] = {
        {{}, "nothing to evaluate", 2},
        {{"--video", clip, "--truth", "truth.csv"}, "--truth is of a capture", 2},
        {{"--video", clip, "--refined"}, "--refined is of a capture", 2},
        {{sweep, "--against", clip}, "--against needs a video", 2},
        {{sweep, "--refined"}, "there is no refinement"},
        {{other, "--json"}, "sweep.csv is of another sweep: its path leads to the crop"},
        {{"--video", clip, "--against", longer}, "do not correspond"},
        {{"--video", longer, "--against", clip}, "do not correspond"},
        {{"--video", grey, "--against", clip}, "not one frame"},
        {{"--video", directory / "text.mp4"}, "text.mp4"},
        {{"--video", directory / "none.mp4"}, "none.mp4"},
        {{directory / "nowhere"}, "sweep.obw"},
        {{sweep, "--video", whole}, "sweep.mp4: the video has 12 frames, its record says 10"},
        {{sweep, "--video", whole, "--against", whole}, "the video has 9 frames, its record says"},
        {{sweep, "--video", whole, "--against", clip}, "clip.mp4: the video is 640x480, its"},
        {{sweep, "--video", clip, "--against", tenFrames}, "clip.mp4: the video is 640x480, its"},
    };
    for (auto [arguments, reason, exitCode] : cases) {
        arguments.insert(arguments.begin(), "evaluate");
        const ToolRun run = runTool(arguments);
        EXPECT_EQ(run.exitCode, exitCode) << reason;
        EXPECT_THAT(run.err, HasSubstr(reason));
        EXPECT_EQ(std::ranges::count(run.err, '\n'), 1) << run.err;
    }
}
