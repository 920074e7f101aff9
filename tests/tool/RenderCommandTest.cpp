#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>

#include "support/TestDirectory.h"
#include "support/VideoFile.h"
#include "tool/AnalyticSweep.h"
#include "tool/RunTool.h"

namespace test_support {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class RenderCommand : public testing::Test {
  protected:
    RenderCommand() { sweep.write(input); }

    ToolRun render(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"render", input.string()});
        return runTool(arguments);
    }

    template <typename Change>
    void changeRecord(Change change) const {
        auto changed = sweep.record();
        change(changed);
        sweep.writeRecord(input / "sweep.obw", changed);
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
    const ToolRun run = render({"-o", video, "--border-frames"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("13 frames of 320x240 (2 before the sweep, 9 of it, 2 after)"),
              std::string::npos)
        << run.out;
    EXPECT_THAT(run.err, HasSubstr("the motion of 2 of 10 frames could not be measured"));
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
    ASSERT_EQ(render({"-o", video, "--threads", "1"}).exitCode, 0);
    ASSERT_EQ(render({"-o", other, "--threads", "3"}).exitCode, 0);
    EXPECT_EQ(readVideo(video).size(), 9u);
    EXPECT_TRUE(contentOf(video) == contentOf(other));
}

TEST_F(RenderCommand, TellsAsJsonWhatItWroteAndNothingWhenQuiet) {
    const ToolRun run = render({"-o", video, "--border-frames", "--json"});
    const auto json = nlohmann::json::parse(run.out);
    EXPECT_EQ(json["outputs"], nlohmann::json({{"video", video}}));
    EXPECT_EQ(json["sizes"]["video"], nlohmann::json({{"width", 320}, {"height", 240}}));
    EXPECT_EQ(json["frames"], 13);
    EXPECT_EQ(json["borderFrames"], nlohmann::json({{"left", 2}, {"right", 2}}));
    EXPECT_EQ(json["crop"],
              nlohmann::json({{"x", 32}, {"y", 24}, {"width", 256}, {"height", 192}}));
    EXPECT_EQ(json["rotationDegrees"], 270);
    EXPECT_THAT(json["warnings"][0], HasSubstr("could not be measured"));
    EXPECT_TRUE(json["verdict"]["steadier"].is_boolean());
    EXPECT_GE(json["seconds"]["total"], json["seconds"]["video"]);
    EXPECT_EQ(render({"-o", video, "-q"}).out, "");
}

/// The display matrix in the header of an MP4's only track, 16.16 fixed point but for the last
/// column: x' = a x + c y, y' = b x + d y.
std::array<std::uint32_t, 4> displayMatrix(const fs::path& file) {
    const std::string bytes = contentOf(file);
    const std::size_t matrix = bytes.find("tkhd") + 4 + 40;
    const auto element = [&](std::size_t index) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < 4; ++i)
            value = value << 8 | static_cast<unsigned char>(bytes.at(matrix + 4 * index + i));
        return value;
    };
    return {element(0), element(1), element(3), element(4)};
}

TEST_F(RenderCommand, PlaysUprightWithTheRecordedFramesOnTheLeft) {
    constexpr std::uint32_t one = 0x10000, minusOne = 0xffff0000;
    struct Case {
        int orientation, flipped;
        std::array<std::uint32_t, 4> matrix;
        int width, height;
        int recordedY;  ///< Where the half with the recorded frames begins.
    };
    // Turned clockwise by 90 degrees, x goes down and y to the left. A mirrored picture that is
    // turned the other way shows what the upright one does, its left on the right.
    const Case cases[] = {{0, 0, {one, 0, 0, one}, 640, 240, 0},
                          {360, 0, {one, 0, 0, one}, 640, 240, 0},
                          {90, 0, {0, one, minusOne, 0}, 320, 480, 240},
                          {270, 0, {0, minusOne, one, 0}, 320, 480, 0},
                          {90, 1, {0, minusOne, one, 0}, 320, 480, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.orientation << " " << c.flipped);
        changeRecord([&](auto& record) {
            record.orientation = c.orientation;
            record.frontCameraFlipped = c.flipped;
        });
        ASSERT_EQ(render({"-o", video, "--compare", "--quality", "4"}).exitCode, 0);
        EXPECT_EQ(displayMatrix(video), c.matrix);
        const auto frames = readVideo(video);
        ASSERT_EQ(frames.size(), 9u);
        ASSERT_EQ(frames[1].size(), std::size_t(c.width) * c.height * 3 / 2);
        double sum = 0;  // of the second frame's middle, where no label is
        for (int y = 60; y < 180; ++y)
            for (int x = 100; x < 220; ++x)
                sum += std::abs(frames[1][(c.recordedY + y) * c.width + x] -
                                sceneAt(AnalyticSweep::left(1) + (c.flipped ? 319 - x : x),
                                        AnalyticSweep::top(1) + y)
                                    .y);
        EXPECT_LT(sum / (120 * 120), 3);
    }
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

TEST_F(RenderCommand, WritesPicturesAndReplacesOnlyItsOwnUnforced) {
    const fs::path strip = directory / "strip.png", panorama = directory / "panorama.png";
    writeFile(strip, "mine");
    std::vector<std::string> arguments{"render", input, "--strip", strip, "--panorama", panorama};
    const ToolRun refused = runTool(arguments);
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.err, HasSubstr("orbitwalk did not write"));
    EXPECT_EQ(contentOf(strip), "mine");
    arguments.push_back("--force");
    ASSERT_EQ(runTool(arguments).exitCode, 0);
    arguments.pop_back();
    const ToolRun again = runTool(arguments);
    ASSERT_EQ(again.exitCode, 0) << again.err;
    EXPECT_GT(pngSize(panorama).second, 256 + 72) << "the crop's width, and the way";
    // Six columns and two rows of 240x320, with gaps of 6 and captions of 20 pixels.
    EXPECT_EQ(pngSize(strip), std::pair(6 * 246 + 6, 2 * 346 + 6));
}

TEST_F(RenderCommand, WritesPicturesUpright) {
    const std::string strip = directory / "strip.png", panorama = directory / "panorama.png";
    const auto picturesOf = [&](int orientation, bool flipped) {
        changeRecord([&](auto& record) {
            record.orientation = orientation;
            record.frontCameraFlipped = flipped;
        });
        EXPECT_EQ(render({"--strip", strip, "--panorama", panorama}).exitCode, 0);
        const cv::Mat sheet = cv::imread(strip);
        const cv::Size picture = orientation == 0 ? cv::Size(320, 240) : cv::Size(240, 320);
        return std::pair(cv::Mat(sheet, cv::Rect({6, 26}, picture)).clone(),
                         cv::imread(panorama, cv::IMREAD_UNCHANGED));
    };
    const struct {
        int orientation;
        bool flipped;
        cv::RotateFlags rotation;
    } cases[] = {{90, false, cv::ROTATE_90_CLOCKWISE},
                 {270, false, cv::ROTATE_90_COUNTERCLOCKWISE},
                 {90, true, cv::ROTATE_90_COUNTERCLOCKWISE}};
    for (const auto& c : cases) {
        auto [first, whole] = picturesOf(0, c.flipped);
        cv::rotate(first, first, c.rotation);
        cv::rotate(whole, whole, c.rotation);
        const auto [uprightFirst, uprightWhole] = picturesOf(c.orientation, c.flipped);
        ASSERT_EQ(uprightWhole.size(), whole.size());
        EXPECT_EQ(cv::norm(uprightFirst, first, cv::NORM_INF), 0);
        EXPECT_EQ(cv::norm(uprightWhole, whole, cv::NORM_INF), 0);
    }
}

TEST_F(RenderCommand, RefusesWhatDoesNotBelongTogetherInOneLineAndLeavesNothing) {
    struct Case {
        std::vector<std::string> arguments;
        const char* complaint;
        std::function<void()> damage = [] {};
        int exitCode = 1;
    };
    const fs::path mp4 = input / "sweep.mp4", csv = input / "sweep.csv";
    const std::string picture = (directory / "p.png").string();
    const std::vector<std::string> toVideo{"-o", video}, toPanorama{"--panorama", picture};
    const auto nothing = [] {};
    const Case cases[] = {
        {toVideo, "video has 9 frames, its record says 10", [&] { sweep.writeVideo(mp4, 9); }},
        {{"--strip", picture}, "video has 12 frames, its", [&] { sweep.writeVideo(mp4, 12); }},
        {toVideo, "is 320x240, its record says 400x240",
         [&] {
             changeRecord([](auto& r) { r.width = 400; });
             fs::remove(csv);
         }},
        {toVideo, "not a motion record", [&] { writeFile(input / "sweep.obw", "short"); }},
        {toVideo, "renders no frame",
         [&] { changeRecord([](auto& r) { std::ranges::fill(r.renderFlag, 0); }); }},
        {toVideo, "sweep.mp4", [&] { writeFile(mp4, "not a video"); }},
        {toPanorama, "sweep.csv: No such file", [&] { fs::remove(csv); }},
        {toPanorama, "it has 1 frames, the record says 10",
         [&] { writeFile(csv, "frame,x,y,a,flag,repeated\n0,0,0,0,1,0\n"); }},
        {{"-o", mp4}, "that name is taken", nothing, 2},
        {{"-o", directory / "a.mp4", "--strip", directory / "none" / "s.png"},
         "there is no directory"},
        {{"-o", csv / "out.mp4"}, "sweep.csv is not a directory"},
        {{"-o", "/dev/stdout"}, "--output: /dev/stdout does not end in .mp4", nothing, 2},
        {{"--strip", directory / "s.jpg"}, "--strip: ", nothing, 2},
        {{"--panorama", directory / "p"}, "does not end in .png", nothing, 2},
        {{}, "nothing to render", nothing, 2},
        {{"--compare", "--strip", picture}, "--compare needs a video", nothing, 2},
    };
    const TestDirectory whole;
    fs::copy(input, whole / "sweep");
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.arguments) + ": " + c.complaint);
        fs::remove_all(input);
        fs::copy(whole / "sweep", input);
        c.damage();
        const ToolRun run = render(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode);
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
    EXPECT_THAT(run.err, HasSubstr("orbitwalk: cannot print the output: No space left on device"));
}

TEST_F(RenderCommand, WarnsOfPixelsThatWereNeverRecordedAndOfBorderFramesThatJump) {
    changeRecord([](auto& record) {
        std::ranges::copy(std::array{0, 0, 320, 240}, record.cropParam);
    });
    fs::remove(input / "sweep.csv");
    EXPECT_THAT(render({"-o", video}).err,
                HasSubstr("lie inside the crop but outside what was recorded"));
    sweep.write(input);
    changeRecord([](auto& record) { record.rightBorderMat[0][6] += 100'000'000; });
    const char* const jump = "the border frames make the picture jump by";
    EXPECT_THAT(render({"-o", video, "--border-frames"}).err, HasSubstr(jump));
    EXPECT_THAT(render({"-o", video}).err, testing::Not(HasSubstr(jump)));
}

}  // namespace
}  // namespace test_support
