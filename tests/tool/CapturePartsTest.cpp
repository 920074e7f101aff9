#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>

#include "capture/EngineTempDirectory.h"
#include "capture/FrameList.h"
#include "capture/Notes.h"
#include "capture/RepeatedMotion.h"
#include "capture/SweepPath.h"
#include "support/TestDirectory.h"
#include "sweep/Summary.h"
#include "terminal/ToolError.h"

namespace {

using namespace orbitwalk::tool;
using orbitwalk::Trajectory;
using Names = std::vector<std::string>;

TEST(FrameList, ReadsNumbersAndRanges) {
    EXPECT_EQ(parseFrameList("3"), (std::set{3}));
    EXPECT_EQ(parseFrameList("10-12,3,11,999"), (std::set{3, 10, 11, 12, 999}));
    for (const char* bad : {"", "x", "3,", ",3", "-3", "+3", "5-", "7-5", "1 ,2", "3x", "1000",
                            "0-1000", "99999999999"})
        EXPECT_THROW(parseFrameList(bad), ToolError) << bad;
}

TEST(SweepDirection, IsAgainstThePictureMotionOfTheHeldDevice) {
    constexpr Trajectory left{-100, 3, 0}, right{100, -3, 0}, up{3, -100, 0}, down{-3, 100, 0};
    const struct {
        int orientation;
        Trajectory leftToRight;
        Trajectory rightToLeft;
    } cases[] = {
        {0, left, right}, {90, up, down}, {180, right, left}, {270, down, up}, {360, left, right}};
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

TEST(EngineTempDirectory, RefusesAPathThatDoesNotFit) {
    const test_support::TestDirectory dir;
    const std::string formerRoot = std::getenv("TMPDIR") ? std::getenv("TMPDIR") : "";
    const std::string formerEngine = localTmpDir;
    const std::filesystem::path tooLong = dir / std::string(180, 'x');
    std::filesystem::create_directory(tooLong);
    setenv("TMPDIR", tooLong.c_str(), 1);
    EXPECT_THROW(EngineTempDirectory{}, ToolError);
    EXPECT_EQ(localTmpDir, formerEngine);
    setenv("TMPDIR", formerRoot.c_str(), 1);
}

TEST(Notes, AdviseWhereTheVideoIsMarkedAsTurned) {
    Summary summary;
    EXPECT_EQ(notesOn(summary), std::vector<std::string>{});
    summary.videoRate = 30000 / 1001.0;
    summary.unheededRotation = 90;
    EXPECT_EQ(notesOn(summary),
              std::vector<std::string>{"the video is marked to be shown turned by 90 degrees; give "
                                       "--orientation"});
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
