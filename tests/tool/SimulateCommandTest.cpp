#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "commands/Commands.h"
#include "common/PendingFile.h"
#include "common/ToolError.h"
#include "media/VideoReader.h"
#include "simulate/Simulation.h"

namespace orbitwalk::tool {
namespace {

namespace fs = std::filesystem;

std::string contents(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class SimulateCommand : public testing::Test {
  protected:
    SimulateCommand() {
        std::string name = (fs::temp_directory_path() / "simulate-XXXXXX").string();
        mDirectory = mkdtemp(name.data());
    }
    ~SimulateCommand() override { fs::remove_all(mDirectory); }

    fs::path file(const std::string& name) const { return mDirectory / name; }

    /// @return the failure's text, empty when the command succeeded.
    std::string run(std::vector<std::string> arguments) const {
        CLI::App app;
        addSimulateCommand(app);
        arguments.insert(arguments.begin(), "simulate");
        std::reverse(arguments.begin(), arguments.end());
        testing::internal::CaptureStdout();
        std::string failure;
        try {
            app.parse(arguments);
        } catch (const std::exception& error) {
            failure = error.what();
        }
        testing::internal::GetCapturedStdout();
        return failure;
    }

    std::size_t filesLeft() const {
        return std::distance(fs::directory_iterator(mDirectory), fs::directory_iterator());
    }

    fs::path mDirectory;
};

const std::vector<std::string> smallClip{"--size", "160x128", "--frames", "6", "--speed", "3"};

std::vector<std::string> with(std::vector<std::string> arguments,
                              const std::vector<std::string>& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

TEST_F(SimulateCommand, WritesTheSameClipAndTruthEveryTime) {
    for (const std::string name : {"a", "b"})
        ASSERT_EQ(run(with(smallClip, {"-o", file(name + ".mp4"), "--truth", file(name + ".csv")})),
                  "");
    EXPECT_EQ(filesLeft(), 4u);
    EXPECT_FALSE(contents(file("a.mp4")).empty());
    EXPECT_EQ(contents(file("a.mp4")), contents(file("b.mp4")));
    EXPECT_EQ(contents(file("a.csv")), contents(file("b.csv")));
    EXPECT_THAT(contents(file("a.csv")),
                testing::StartsWith("frame,dx,dy,da,x,y,a\n0,0,0,0,0,0,0\n"));
}

TEST_F(SimulateCommand, EncodesTheRenderedFramesWithoutVisibleLoss) {
    ASSERT_EQ(run(with(smallClip, {"-o", file("clip.mp4")})), "");
    SimulationSettings settings;
    settings.size = {160, 128};
    settings.frames = 6;
    settings.speed = 3;
    Simulation simulation(settings, {});
    media::VideoReader reader(file("clip.mp4"));
    std::vector<std::uint8_t> decoded, frame(simulation.frameBytes());
    int frames = 0;
    for (; reader.read(decoded); ++frames) {
        simulation.render(frames, frame);
        EXPECT_GT(cv::PSNR(decoded, frame), 42) << "dB, frame " << frames;
    }
    EXPECT_EQ(frames, 6);
}

TEST_F(SimulateCommand, RefusesInOneLineAndLeavesNothingBehind) {
    std::ofstream(file("text.jpg")) << "no picture";
    fs::create_directory(file("folder"));
    const std::string clip = file("clip.mp4");
    struct Case {
        std::vector<std::string> arguments;
        std::string reason;
    };
    const std::vector<Case> cases{
        {{file("none.jpg"), "-o", clip}, "No such file"},
        {{file("folder"), "-o", clip}, "cannot read"},
        {{file("text.jpg"), "-o", clip}, "not a picture"},
        {{"-o", file("none/clip.mp4")}, "cannot write"},
        {{"-o", file("folder")}, "cannot write"},
        {{"-o", clip, "--truth", file("none/truth.csv")}, "cannot write"},
        {{"-o", clip, "--truth", clip}, "names of their own"},
        {{"-o", clip, "--size", "161x120"}, "even numbers"},
        {{"-o", clip, "--size", "big"}, "even numbers"},
        {{"-o", clip, "--rate", "0"}, "frames a second"},
        {{"-o", clip, "--rate", "30/"}, "frames a second"},
        {{"-o", clip, "--speed", "nan"}, "--speed"},
        {{"-o", clip, "--frames", "0"}, "--frames"},
        {{"-o", clip, "--frames", "2.5"}, "--frames"},
        {{"-o", clip, "--direction", "up"}, "--direction"},
        {{"-o", clip, "--frames", "100000"}, "too long"},
    };
    for (const Case& c : cases) {
        const std::string failure = run(c.arguments);
        EXPECT_THAT(failure, testing::HasSubstr(c.reason));
        EXPECT_EQ(failure.find('\n'), std::string::npos) << failure;
        EXPECT_EQ(filesLeft(), 2u) << c.reason;
    }
}

TEST_F(SimulateCommand, KeepsTheOldFileUntilTheNewOneIsComplete) {
    std::ofstream(file("clip")) << "old";
    {
        PendingFile abandoned(file("clip"));
        std::fputs("half", abandoned.stream());
    }
    EXPECT_EQ(contents(file("clip")), "old");
    PendingFile complete(file("clip"));
    std::fputs("new", complete.stream());
    complete.close();
    EXPECT_EQ(contents(file("clip")), "old");
    complete.publish();
    EXPECT_EQ(contents(file("clip")), "new");
    EXPECT_EQ(filesLeft(), 1u);
}

}  // namespace
}  // namespace orbitwalk::tool
