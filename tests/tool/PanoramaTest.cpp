#include "render/Panorama.h"

#include <gtest/gtest.h>

#include <cmath>
#include <opencv2/core.hpp>
#include <span>

#include "render/FramePlanes.h"
#include "render/ScenePath.h"
#include "support/TestDirectory.h"
#include "terminal/ToolError.h"
#include "tool/AnalyticSweep.h"

namespace orbitwalk::tool {
namespace {

using test_support::AnalyticSweep;

Sweep writtenSweep(const test_support::TestDirectory& directory, bool flipped = false) {
    const AnalyticSweep sweep{};
    auto record = sweep.record();
    record.frontCameraFlipped = flipped;
    sweep.write(directory / "sweep");
    sweep.writeRecord(directory / "sweep" / "sweep.obw", record);
    Sweep opened = openSweep(directory / "sweep");
    opened.path = AnalyticSweep::measuredPath();
    return opened;
}

// The corrections put frame i at (8 i, i); border frames reach 16 px to both sides.
TEST(PanoramaLayout, LaysPicturesAlongTheSmoothedPath) {
    const test_support::TestDirectory directory;
    const Sweep sweep = writtenSweep(directory);
    const auto layout = layOut(sweep.record, playlist(sweep.record),
                               framesFromScene(AnalyticSweep::measuredPath()));
    EXPECT_EQ(layout.scale, 1);
    EXPECT_EQ(layout.canvas, cv::Size(256 + 72 + 32, 192 + 9));
    ASSERT_EQ(layout.placements.size(), 13u);
    std::vector<int> lefts;
    for (const Placement& place : layout.placements)
        lefts.push_back(place.bounds.x);
    EXPECT_EQ(lefts, (std::vector{0, 8, 16, 24, 32, 40, 56, 64, 72, 80, 88, 96, 104}));
    EXPECT_EQ(layout.placements[6].bounds, cv::Rect(56, 5, 256, 192));
}

TEST(ScenePath, ChainsRotationsAndOffsets) {
    const double quarter = CV_PI / 2;
    const SweepRow rows[] = {{}, {{10, 0, quarter}}, {{10, 5, quarter}}};
    const PicturePoint p = framesFromScene(rows)[2]({3, 1});
    EXPECT_NEAR(p.x, 9, 1e-6);  // (3, 1) turned is (-1, 3), then moved by (10, 0) and (0, 5).
    EXPECT_NEAR(p.y, 8, 1e-6);
}

// The frames' second differences, (-10, 9), (17, -11), (-36, 12), (48, -13), (-29, 1), (13, -2),
// (-10, 14) and (7, -10), have the mean square 5964 / 8. The pictures lie on a straight line, 1 px
// down a frame, and the border frames at its ends go on level.
TEST(ScenePath, ComparesTheJumpAtTheBorderFramesWithTheShakeAsRecorded) {
    const AnalyticSweep sweep{};
    auto record = sweep.record();
    const auto jumpOf = [&](bool withBorderFrames) {
        const auto opened = std::get<RecordReader>(
            RecordReader::open(std::as_bytes(std::span(&record, std::size_t{1}))));
        return borderJump(playlist(opened, withBorderFrames),
                          framesFromScene(AnalyticSweep::measuredPath()), {320, 240});
    };
    EXPECT_FALSE(jumpOf(false));
    EXPECT_NEAR(jumpOf(true)->join, 1, 1e-3);
    EXPECT_NEAR(jumpOf(true)->shake, std::sqrt(5964 / 8.0), 1e-3);
    for (auto& matrix : record.leftBorderMat)
        matrix[6] -= 30'000'000;
    EXPECT_NEAR(jumpOf(true)->join, std::hypot(30, 1), 1e-3);
}

TEST(PanoramaLayout, ScalesALongSweepDownAndRefusesAnAbsurdOne) {
    const test_support::TestDirectory directory;
    const Sweep sweep = writtenSweep(directory);
    const auto shots = playlist(sweep.record, false);
    auto path = AnalyticSweep::measuredPath();
    path.back().position.x = -40000;
    const auto layout = layOut(sweep.record, shots, framesFromScene(path));
    EXPECT_EQ(layout.canvas.width, 16384);
    EXPECT_EQ(layout.placements.back().bounds.br().x, 16384);
    path.back().position.x = -1e6;
    EXPECT_THROW(layOut(sweep.record, shots, framesFromScene(path)), ToolError);
}

TEST(PanoramaCanvas, FadesIntoWhatLiesBelow) {
    PanoramaCanvas canvas({3, 1});
    canvas.paint(cv::Mat3b(1, 2, {100, 0, 40}), (cv::Mat1b(1, 2) << 255, 10), {0, 0});
    canvas.paint(cv::Mat3b(1, 2, {0, 200, 40}), (cv::Mat1b(1, 2) << 51, 0), {0, 0});
    const cv::Mat4b picture = canvas.picture();
    EXPECT_EQ(picture(0, 0), cv::Vec4b(80, 40, 40, 255));  // a fifth of the upper one
    EXPECT_EQ(picture(0, 1), cv::Vec4b(100, 0, 40, 255));
    EXPECT_EQ(picture(0, 2)[3], 0);
}

TEST(Panorama, ShowsTheSceneThatWasSweptAcross) {
    for (const bool flipped : {false, true}) {
        const test_support::TestDirectory directory;
        const Sweep sweep = writtenSweep(directory, flipped);
        int painted = 0;
        cv::Mat4b picture = panorama(sweep, true, 2, [&](int n) { painted = n; });
        EXPECT_EQ(painted, 13);
        if (flipped)
            cv::flip(picture, picture, 1);
        // The first border picture lies 16 px left of the first frame's crop.
        const auto scene = test_support::sceneFrame(360, 202, 32 - 16, 24);
        const cv::Mat3b expected = toBgr(scene, {360, 202});
        ASSERT_EQ(picture.size(), cv::Size(360, 201));
        int covered = 0;
        double sum = 0;
        for (int y = 0; y < picture.rows; ++y)
            for (int x = 0; x < picture.cols; ++x)
                if (picture(y, x)[3] == 255) {
                    ++covered;
                    for (int c = 0; c < 3; ++c)
                        sum += std::abs(picture(y, x)[c] - expected(y, x)[c]);
                }
        EXPECT_GT(covered, 256 * 192 + 104 * 180);
        EXPECT_LT(sum / covered / 3, 3) << "mean difference, levels";
    }
}

}  // namespace
}  // namespace orbitwalk::tool
