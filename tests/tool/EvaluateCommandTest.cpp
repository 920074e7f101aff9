#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "support/TestDirectory.h"
#include "support/VideoFile.h"
#include "tool/AnalyticSweep.h"
#include "tool/EvaluateScene.h"
#include "tool/RunTool.h"

using namespace test_support;
using testing::HasSubstr;

namespace {

void writeViews(const std::filesystem::path& file, const std::vector<View>& views) {
    orbitwalk::media::EncoderSettings settings;
    settings.width = pictureSize().width;
    settings.height = pictureSize().height;
    settings.quality = 8;
    writeVideo(file, settings, static_cast<int>(views.size()), [&](int i) {
        const cv::Mat1b luma = takePicture(views[i]);
        Frame i420(luma.total() * 3 / 2, 128);
        std::copy(luma.begin(), luma.end(), i420.begin());
        return i420;
    });
}

/// A pan that jumps to and fro by 2 pixels: the second difference is 8 pixels.
std::vector<View> jumpyPan(int frames) {
    std::vector<View> views;
    for (int k = 0; k < frames; ++k)
        views.push_back({5.0 * k + (k % 2 ? 2 : -2), 0});
    return views;
}

/// The same without the jumps, enlarged.
std::vector<View> steadyPan(int frames) {
    std::vector<View> views;
    for (int k = 0; k < frames; ++k)
        views.push_back({5.0 * k, 0, 0, 1.25});
    return views;
}

}  // namespace

TEST(EvaluateCommand, JudgesASteadyVideoBesideItsSource) {
    const TestDirectory directory;
    writeViews(directory / "clip.mp4", jumpyPan(10));
    writeViews(directory / "steady.mp4", steadyPan(10));
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
    const ToolRun text = runTool({"evaluate", sweep, "--truth", truth});
    EXPECT_THAT(text.out, HasSubstr("missing pixels inside the crop: 0;"));
    EXPECT_THAT(text.out, HasSubstr("drift per 100 pixels"));
    writeFile(truth, "frame,dx,dy,da,x,y,a\n0,0,0,0,0,0,0\n");
    EXPECT_THAT(runTool({"evaluate", sweep, "--truth", truth}).err,
                HasSubstr("it has 1 frames, the sweep has 12"));
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

TEST(EvaluateCommand, RefusesWhatItCannotJudgeInOneLine) {
    const TestDirectory directory;
    const std::string clip = directory / "clip.mp4", longer = directory / "longer.mp4";
    writeViews(clip, steadyPan(3));
    writeViews(longer, steadyPan(4));
    writeFile(directory / "text.mp4", "no video");
    const struct {
        std::vector<std::string> arguments;
        const char* reason;
    } cases[] = {
        {{}, "nothing to evaluate"},
        {{"--video", clip, "--truth", "truth.csv"}, "give its directory"},
        {{"--video", clip, "--against", longer}, "do not correspond"},
        {{"--video", longer, "--against", clip}, "do not correspond"},
        {{"--video", directory / "text.mp4"}, "text.mp4"},
        {{"--video", directory / "none.mp4"}, "none.mp4"},
        {{directory / "nowhere"}, "sweep.obw"},
    };
    for (auto [arguments, reason] : cases) {
        arguments.insert(arguments.begin(), "evaluate");
        const ToolRun run = runTool(arguments);
        EXPECT_EQ(run.exitCode, 1) << reason;
        EXPECT_THAT(run.err, HasSubstr(reason));
        EXPECT_EQ(std::ranges::count(run.err, '\n'), 1) << run.err;
    }
}
