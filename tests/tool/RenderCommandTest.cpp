#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>

#include "support/TestDirectory.h"
#include "support/VideoFile.h"
#include "tool/AnalyticSweep.h"
#include "tool/RunTool.h"

namespace test_support {
namespace {

namespace fs = std::filesystem;

class RenderCommand : public testing::Test {
  protected:
    RenderCommand() { sweep.write(input); }

    ToolRun render(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"render", input.string()});
        return runTool(arguments);
    }

    const AnalyticSweep sweep{};
    const TestDirectory directory;
    const fs::path input = directory / "sweep";
    const std::string video = (directory / "out.mp4").string();
};

/// Mean difference of a frame's luma from the scene window whose crop it shows, 1.25 times
/// enlarged.
double lumaError(const Frame& frame, double sceneLeft, double sceneTop) {
    double sum = 0;
    for (int y = 0; y < 240; ++y)
        for (int x = 0; x < 320; ++x) {
            const double px = sceneLeft + 32 + (x + 0.5) * 0.8 - 0.5;
            const double py = sceneTop + 24 + (y + 0.5) * 0.8 - 0.5;
            sum += std::abs(frame[y * 320 + x] - sceneAt(px, py).y);
        }
    return sum / (320 * 240);
}

TEST_F(RenderCommand, PlaysBorderFramesAndTheSteadySweep) {
    const ToolRun run = render({"-o", video});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("13 frames of 320x240 (2 before the sweep, 9 of it, 2 after)"),
              std::string::npos)
        << run.out;
    EXPECT_EQ(run.err, "");
    const auto frames = readVideo(video);
    ASSERT_EQ(frames.size(), 13u);
    ASSERT_EQ(frames[0].size(), 320u * 240 * 3 / 2);
    const double lefts[] = {-16, -8, 0, 8, 16, 24, 40, 48, 56, 64, 72, 80, 88};
    const double tops[] = {0, 0, 0, 1, 2, 3, 5, 6, 7, 8, 9, 9, 9};
    for (int i = 0; i < 13; ++i)
        EXPECT_LT(lumaError(frames[i], lefts[i], tops[i]), 3) << i;
}

TEST_F(RenderCommand, GivesTheSameBytesWithAnyNumberOfThreads) {
    const std::string other = (directory / "other.mp4").string();
    ASSERT_EQ(render({"-o", video, "--threads", "1", "--no-border-frames"}).exitCode, 0);
    ASSERT_EQ(render({"-o", other, "--threads", "3", "--no-border-frames"}).exitCode, 0);
    EXPECT_EQ(readVideo(video).size(), 9u);
    EXPECT_TRUE(contentOf(video) == contentOf(other));
}

TEST_F(RenderCommand, PutsTheRecordedFramesOnTheLeft) {
    ASSERT_EQ(render({"-o", video, "--compare", "--quality", "4"}).exitCode, 0);
    const auto frames = readVideo(video);
    ASSERT_EQ(frames.size(), 13u);
    ASSERT_EQ(frames[3].size(), 640u * 240 * 3 / 2);
    double sum = 0;  // of the left half of the sweep's second frame
    for (int y = 0; y < 240; ++y)
        for (int x = 0; x < 320; ++x)
            sum += std::abs(frames[3][y * 640 + x] -
                            sceneAt(AnalyticSweep::left(1) + x, AnalyticSweep::top(1) + y).y);
    EXPECT_LT(sum / (320 * 240), 3);
}

/// Width and height in a PNG file's header.
std::pair<int, int> pngSize(const fs::path& file) {
    const std::string bytes = contentOf(file);
    EXPECT_EQ(bytes.substr(0, 8), "\x89PNG\r\n\x1a\n");
    const auto number = [&](std::size_t offset) {
        int value = 0;
        for (std::size_t i = offset; i < offset + 4; ++i)
            value = value * 256 + static_cast<unsigned char>(bytes.at(i));
        return value;
    };
    return {number(16), number(20)};
}

TEST_F(RenderCommand, WritesStripAndPanorama) {
    const fs::path strip = directory / "strip.png", panorama = directory / "panorama.png";
    const ToolRun run = runTool({"render", input, "--strip", strip, "--panorama", panorama},
                                test_support::usingPictureCodecs());
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_GT(pngSize(panorama).first, 256 + 72) << "the crop's width, and the way";
    // Six columns and two rows of 320x240, with gaps of 6 and captions of 20 pixels.
    EXPECT_EQ(pngSize(strip), std::pair(6 * 326 + 6, 2 * 266 + 6));
}

TEST_F(RenderCommand, RefusesWhatDoesNotBelongTogetherInOneLineAndLeavesNothing) {
    struct Case {
        std::vector<std::string> arguments;
        const char* complaint;
        std::function<void()> damage = [] {};
    };
    const auto record = [&](auto change) {
        auto changed = sweep.record();
        change(changed);
        sweep.writeRecord(input / "sweep.obw", changed);
    };
    const fs::path mp4 = input / "sweep.mp4", csv = input / "sweep.csv";
    const std::string picture = (directory / "p.png").string();
    const std::vector<std::string> toVideo{"-o", video}, toPanorama{"--panorama", picture};
    const Case cases[] = {
        {toVideo, "video has 9 frames, its record says 10", [&] { sweep.writeVideo(mp4, 9); }},
        {{"--strip", picture}, "video has 12 frames, its", [&] { sweep.writeVideo(mp4, 12); }},
        {toVideo, "is 320x240, its record says 400x240",
         [&] {
             record([](auto& r) { r.width = 400; });
             fs::remove(csv);
         }},
        {toVideo, "not a motion record", [&] { writeFile(input / "sweep.obw", "short"); }},
        {toVideo, "renders no frame",
         [&] { record([](auto& r) { std::ranges::fill(r.renderFlag, 0); }); }},
        {toVideo, "sweep.mp4", [&] { writeFile(mp4, "not a video"); }},
        {toPanorama, "sweep.csv: No such file", [&] { fs::remove(csv); }},
        {toPanorama, "it has 1 frames, the record says 10",
         [&] { writeFile(csv, "frame,x,y,a,flag,repeated\n0,0,0,0,1,0\n"); }},
        {{"-o", mp4}, "that name is taken"},
        {{"-o", video, "--strip", video}, "that name is taken"},
        {{"--strip", input}, "cannot write"},
        {{"-o", "/dev/stdout"}, "cannot write /dev/stdout: it is no regular file"},
        {{}, "nothing to render"},
        {{"-o", csv / "out.mp4"}, "cannot write"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.arguments) + ": " + c.complaint);
        sweep.write(input);
        c.damage();
        const ToolRun run = render(c.arguments);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_NE(run.err.find(c.complaint), std::string::npos) << run.err;
        EXPECT_EQ(std::ranges::count(run.err, '\n'), 1) << run.err;
        EXPECT_EQ(namesIn(directory / ""), std::vector<std::string>{"sweep"});
    }
}

TEST_F(RenderCommand, SaysWhichOutputIsFull) {
    RunOptions options;
    options.fileSizeLimit = 4096;
    EXPECT_EQ(runTool({"render", input, "-o", video}, options).err,
              "orbitwalk: " + video + ": cannot write the video: File too large\n");
    options.fileSizeLimit.reset();
    options.fullOutput = true;
    const ToolRun run = runTool({"render", input, "-o", video}, options);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "orbitwalk: cannot print the output: No space left on device\n");
}

TEST_F(RenderCommand, WarnsOfPixelsThatWereNeverRecorded) {
    auto record = sweep.record();
    std::ranges::copy(std::array{0, 0, 320, 240}, record.cropParam);
    sweep.writeRecord(input / "sweep.obw", record);
    fs::remove(input / "sweep.csv");
    const ToolRun run = render({"-o", video});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_NE(run.err.find("lie inside the crop but outside what was recorded"), std::string::npos);
}

}  // namespace
}  // namespace test_support
