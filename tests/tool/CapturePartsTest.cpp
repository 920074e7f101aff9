#include <MP4Writer.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "capture/EngineTempDirectory.h"
#include "capture/FrameWorker.h"
#include "capture/LogWatch.h"
#include "capture/Notes.h"
#include "capture/Session.h"
#include "capture/SweepRange.h"
#include "support/Complaint.h"
#include "support/FakeMP4Writer.h"
#include "support/TestDirectory.h"
#include "sweep/Summary.h"
#include "terminal/ToolError.h"
#include "tool/PanVideo.h"

/// The pacing call of the writer, for the stand-in that replaces the others: never waits.
int WaitMP4EngineFrames(int, int) {
    return static_cast<int>(fake_writer::record().frames.size());
}

namespace {

using namespace orbitwalk::tool;
using orbitwalk::Trajectory;
using std::chrono::milliseconds;
using test_support::complaintOf;
using testing::HasSubstr;
using Names = std::vector<std::string>;

/// The engine with a writer that the test holds at a gate.
class SessionTest : public testing::Test {
  protected:
    SessionTest() { fake_writer::reset(); }

    Trajectory feed(Session& session, const std::vector<std::uint8_t>& frame) {
        const Trajectory point = session.measure(frame);
        while (!session.waitForRoom(milliseconds(0)))
            fake_writer::waitForEntered(++mAwaited);
        session.feed(frame, point);
        return point;
    }

    std::vector<Trajectory> feedAll(Session& session) {
        std::vector<Trajectory> path;
        for (const auto& frame : mFrames)
            path.push_back(feed(session, frame));
        return path;
    }

    SweepSelection everything() const {
        return {.first = 0,
                .last = static_cast<int>(mFrames.size()) - 1,
                .flags = std::vector<std::int32_t>(mFrames.size(), 1),
                .direction = OBW_DIRECTION_LEFT2RIGHT};
    }

    const test_support::Pan mPan{.frames = 20, .stepX = -10};
    const std::vector<std::vector<std::uint8_t>> mFrames = test_support::panFrames(mPan);
    const SessionSettings mSettings{.width = mPan.width, .height = mPan.height};
    const EngineTempDirectory mTemporary;
    int mAwaited = 0;
};

TEST_F(SessionTest, HoldsAFastSourceBackWhileTheEncoderStalls) {
    fake_writer::closeGate();
    Session session(mSettings, stdout);
    int fed = 0;
    for (; fed < 20 && session.waitForRoom(milliseconds(0)); ++fed)
        session.feed(mFrames[fed], {});
    EXPECT_EQ(fed, 5) << "four in the queue and one with the encoder";
    EXPECT_FALSE(session.waitForRoom(milliseconds(0)));
    fake_writer::openGate();
    ASSERT_TRUE(fake_writer::waitForEntered(5));
    EXPECT_TRUE(session.waitForRoom(milliseconds(0)));
}

TEST_F(SessionTest, GivesUpOnAnEncoderThatTakesNothing) {
    fake_writer::closeGate();
    SessionSettings settings = mSettings;
    settings.encoderPatience = milliseconds(0);
    Session session(settings, stdout);
    for (int i = 0; i < 11; ++i)
        session.feed(mFrames[i], {});
    EXPECT_THAT(complaintOf<ToolError>([&] { session.waitForRoom(milliseconds(0)); }),
                HasSubstr("stopped taking frames"));
    fake_writer::openGate();
}

TEST_F(SessionTest, FailsWhenPostProcessingNeverReachesItsEnd) {
    fake_writer::setEncodeResult(0);
    Session session(mSettings, stdout);
    const auto path = feedAll(session);
    EXPECT_THAT(complaintOf<ToolError>([&] { session.finish(path, everything(), {}); }),
                HasSubstr("the capture failed: "));
}

TEST_F(SessionTest, CancelsTheCaptureWhenItIsLeft) {
    {
        Session session(mSettings, stdout);
        feed(session, mFrames[0]);
    }
    EXPECT_EQ(fake_writer::record().deinits, 1);
    Session next(mSettings, stdout);
    const auto path = feedAll(next);
    EXPECT_EQ(next.finish(path, everything(), {}).numFrames, 20);
    EXPECT_EQ(fake_writer::record().misuses, 0);
}

TEST_F(SessionTest, SaysWhyTheEngineDoesNotStart) {
    const std::string message =
        complaintOf<ToolError>([] { Session({.width = 2, .height = 2}, stdout); });
    EXPECT_TRUE(message.starts_with("the engine cannot capture 2x2 frames: ")) << message;
    EXPECT_EQ(message.find('\n'), std::string::npos);
}

TEST(FrameWorker, WorksInOrderAndStopsAtAFailure) {
    std::vector<int> done;
    const auto work = [&](std::span<const std::uint8_t> frame) {
        if (frame[0] == 20)
            throw std::runtime_error("the twentieth");
        done.push_back(frame[0]);
    };
    const auto handOver = [](FrameWorker& worker, int frames) {
        std::vector<std::uint8_t> frame;
        for (int i = 0; i < frames; ++i) {
            frame.assign(9, static_cast<std::uint8_t>(i));
            worker.take(frame);
        }
        worker.finish();
    };
    std::vector<int> firstTwenty(20);
    std::iota(firstTwenty.begin(), firstTwenty.end(), 0);
    {
        FrameWorker worker(work);
        handOver(worker, 20);
        EXPECT_EQ(done, firstTwenty);
    }
    done.clear();
    FrameWorker failing(work);
    EXPECT_THROW(handOver(failing, 40), std::runtime_error);
    EXPECT_EQ(done, firstTwenty);
}

TEST(FrameList, ReadsNumbersAndRanges) {
    EXPECT_EQ(parseFrameList("3"), (std::set{3}));
    EXPECT_EQ(parseFrameList("10-12,3,11,999"), (std::set{3, 10, 11, 12, 999}));
    for (const char* bad : {"", "x", "3,", ",3", "-3", "+3", "5-", "7-5", "1 ,2", "3x", "1000",
                            "0-1000", "99999999999"})
        EXPECT_THROW(parseFrameList(bad), UsageError) << bad;
}

TEST(SweepDirection, IsAgainstThePictureMotionOfTheHeldDevice) {
    constexpr Trajectory left{-100, 3, 0}, right{100, -3, 0}, up{3, -100, 0}, down{-3, 100, 0};
    const struct {
        int orientation;
        Trajectory leftToRight;
        Trajectory rightToLeft;
    } cases[] = {{0, left, right}, {90, up, down}, {270, down, up}, {360, left, right}};
    constexpr Trajectory start{};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.orientation);
        EXPECT_EQ(sweepDirection(start, c.leftToRight, c.orientation, false), 1);
        EXPECT_EQ(sweepDirection(start, c.rightToLeft, c.orientation, false), 2);
        EXPECT_EQ(sweepDirection(start, c.leftToRight, c.orientation, true), 2);
        EXPECT_EQ(sweepDirection(start, c.rightToLeft, c.orientation, true), 1);
    }
    EXPECT_EQ(sweepDirection(left, left, 0, false), 1);
    EXPECT_EQ(sweepDirection(right, {50, 0, 0}, 0, false), 1) << "the motion counts, not the place";
}

TEST(SweepDirection, VerticalIsWhatGoesUpOrDownAsTheDeviceIsHeld) {
    const Trajectory start{}, aside{-300, 80, 0}, down{-30, 200, 0}, little{-1, 20, 0};
    const auto vertical = [&](const Trajectory& end, int orientation) {
        return isVertical(std::array{start, end}, orientation, {640, 480});
    };
    EXPECT_TRUE(vertical(down, 0));
    EXPECT_FALSE(vertical(aside, 0));
    EXPECT_FALSE(vertical(little, 0)) << "shaken, not swept";
    EXPECT_FALSE(vertical(down, 90));
    EXPECT_TRUE(vertical(aside, 270));
}

TEST(RepeatedMotion, CountsFramesThatCouldNotBeMeasured) {
    RepeatedMotion repeated;
    for (const char* line : {
             "CalculatePrevToCurTransform : Frame[1] : Transform[ -4.250000, 0.500000, 0.001000 ] ",
             "CalculatePrevToCurTransform  prevFeaturePoints insufficeint frame number 2  12 ",
             "CalculatePrevToCurTransform : Frame[2] : Transform[ -4.250000, 0.500000, 0.001000 ] ",
             "CalculatePrevToCurTransform : Frame[3] : Transform[ -4.250000, 0.500000, 0.001000 ] ",
             "CalculatePrevToCurTransform : Frame[4] : Transform[ -4.250000, 0.500000, 0.001001 ] ",
             "CalculatePrevToCurTransform : Frame[5] : Transform[ 0.000000, 0.000000, 0.000000 ] ",
             "CalculatePrevToCurTransform : Frame[6] : Transform[ -0.000000, 0.000000, 0.000000 ] ",
             "CalculatePrevToCurTransform insufficeint forward tracking  frame number 7 3",
             "CalculatePrevToCurTransform : Frame[7] : Transform[ 0.000000, 0.000000, 0.000000 ] ",
         })
        repeated.takeLine(line);
    // 2 and 7 were said to lack points, 3 had an empty estimate, 6 stands still.
    EXPECT_EQ(repeated.frames(), (std::set{2, 3, 7}));
}

class EngineTempDirectoryTest : public testing::Test {
  protected:
    ~EngineTempDirectoryTest() override {
        mFormer.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", mFormer.c_str(), 1);
    }
    void useRoot(const std::filesystem::path& root) const {
        std::filesystem::create_directory(root);
        setenv("TMPDIR", root.c_str(), 1);
    }
    const test_support::TestDirectory mDir;
    const std::string mFormer = std::getenv("TMPDIR") ? std::getenv("TMPDIR") : "";
};

TEST_F(EngineTempDirectoryTest, RefusesAPathThatDoesNotFit) {
    const std::string formerEngine = localTmpDir;
    useRoot(mDir / std::string(170, 'x'));
    EXPECT_THROW(EngineTempDirectory{}, ToolError);
    EXPECT_EQ(localTmpDir, formerEngine);
}

TEST_F(EngineTempDirectoryTest, RemovesWhatKilledProcessesLeftAndNothingElse) {
    useRoot(mDir / "tmp");
    const auto path = [&](const char* name) { return mDir / "tmp" / name; };
    for (const char* name : {"orbitwalk-capture-killed", "orbitwalk-capture-living", "orbitwalk-x"})
        std::filesystem::create_directories(path(name) / "engine");
    test_support::writeFile(mDir / "precious", "kept");
    std::filesystem::create_symlink(mDir / "precious", path("orbitwalk-capture-killed") / "link");
    std::filesystem::create_directory_symlink(path("orbitwalk-x"),
                                              path("orbitwalk-capture-linked"));
    const int living = open(path("orbitwalk-capture-living").c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(flock(living, LOCK_EX), 0);
    {
        const EngineTempDirectory one;
        const EngineTempDirectory another;
        EXPECT_EQ(test_support::namesIn(mDir / "tmp").size(), 5u);
    }
    close(living);
    EXPECT_EQ(test_support::namesIn(mDir / "tmp"),
              (Names{"orbitwalk-capture-linked", "orbitwalk-capture-living", "orbitwalk-x"}));
    EXPECT_TRUE(std::filesystem::exists(path("orbitwalk-x") / "engine"));
    EXPECT_EQ(test_support::contentOf(mDir / "precious"), "kept");
}

TEST(Notes, TellWhatTheSweepDoesNotKeep) {
    Summary summary;
    VideoFacts video;
    EXPECT_EQ(notesOn(summary, video), Names{});
    summary.videoRate = 30000 / 1001.0;
    for (const auto& [turn, orientation] : {std::pair{90, 270}, std::pair{270, 90}}) {
        video.unheededRotation = turn;
        EXPECT_EQ(notesOn(summary, video),
                  Names{"the video is marked to be shown turned by " + std::to_string(turn) +
                        " degrees; give --orientation " + std::to_string(orientation) +
                        ", which the record holds as " + std::to_string(turn)});
    }
    video = {.variableRate = orbitwalk::media::RateRange{15, 60},
             .unheededRotation = 180,
             .pixelAspect = 4.0 / 3,
             .audio = true,
             .wideColour = true};
    summary.direction = OBW_DIRECTION_TOP2BOTTOM;
    const auto notes = notesOn(summary, video);
    ASSERT_EQ(notes.size(), 6u);
    const char* says[] = {"from 15 to 60 frames/s", "upside down", "vertical",
                          "1.333 times as wide",    "BT.2020",     "sound"};
    for (std::size_t i = 0; i < notes.size(); ++i)
        EXPECT_THAT(notes[i], HasSubstr(says[i]));
    summary.rendered = 1;
    EXPECT_EQ(warningsOf(summary, {.completeness = {28, 60, 1}}),
              Names{"the video ends early or is damaged: 28 of 60 frames were read, 1 of them "
                    "damaged"});
}

TEST(Smoothing, TellsTheFallbackFromASweepThatStoodStillAndFromTooFewFrames) {
    auto record = std::make_unique<__kelOBWKDXMetaData>();
    record->width = 640;
    record->height = 480;
    record->numFrames = record->endIndex = 4;
    std::fill_n(record->renderFlag, 4, 1);
    for (auto& matrix : record->renderMat)
        matrix[0] = matrix[4] = matrix[8] = 1000000;
    std::ranges::copy(std::array{0, 0, 640, 480}, record->cropParam);
    EXPECT_EQ(smoothingOf(*record), Smoothing::Smoothed);
    std::ranges::copy(std::array{0, 0, 639, 479}, record->cropParam);
    EXPECT_EQ(smoothingOf(*record), Smoothing::FellBack);
    record->startIndex = 1;
    EXPECT_EQ(smoothingOf(*record), Smoothing::FellBack);
    record->renderFlag[2] = 0;
    EXPECT_EQ(smoothingOf(*record), Smoothing::TooFewFrames);
    record->startIndex = 0;
    record->renderMat[1][6] = 1;
    EXPECT_EQ(smoothingOf(*record), Smoothing::Smoothed);
}

}  // namespace
