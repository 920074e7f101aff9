#include "render/Panorama.h"

#include <gtest/gtest.h>

#include <cmath>
#include <opencv2/core.hpp>

#include "render/FramePlanes.h"
#include "support/SampleRecord.h"
#include "support/TestDirectory.h"
#include "sweep/Steadiness.h"
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
                               recordedMotions(AnalyticSweep::measuredPath(), sweep.record));
    EXPECT_EQ(layout.scale, 1);
    EXPECT_EQ(layout.canvas, cv::Size(256 + 72 + 32, 192 + 9));
    ASSERT_EQ(layout.placements.size(), 13u);
    std::vector<int> lefts;
    for (const Placement& place : layout.placements)
        lefts.push_back(place.bounds.x);
    EXPECT_EQ(lefts, (std::vector{0, 8, 16, 24, 32, 40, 56, 64, 72, 80, 88, 96, 104}));
    EXPECT_EQ(layout.placements[6].bounds, cv::Rect(56, 5, 256, 192));
}

// A path turns about a point that is not the picture's corner: (64, 48).
TEST(PanoramaLayout, LeavesAPictureThatTurnsAboutItsCentreInPlace) {
    auto record = AnalyticSweep().record();
    for (auto& matrix : record.renderMat)
        matrix[6] = matrix[7] = 0;
    auto rows = AnalyticSweep::measuredPath();
    const auto turn =
        SimilarityTransform{.angle = 0.02, .about = {159.5, 119.5}}.takenAbout({64, 48});
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i].position = {turn.x * double(i), turn.y * double(i), turn.angle * double(i)};
    const auto reader = opened(record);
    const auto layout = layOut(reader, playlist(reader, false), recordedMotions(rows, reader));
    for (const Placement& place : layout.placements) {
        const cv::Point twice = place.bounds.tl() + place.bounds.br();
        EXPECT_NEAR(twice.x, layout.canvas.width, 3);
        EXPECT_NEAR(twice.y, layout.canvas.height, 3);
    }
}

// The changes of motion of the nine frames, (-10, 9), (17, -11), (-6, 8), (-11, -8), (13, -2),
// (-10, 14) and (7, -10), have the mean square 1494 / 7. The pictures lie on a straight line, 1 px
// down a frame, and the border frames at its ends go on level.
TEST(BorderJump, ComparesTheJoinWithTheShakeAsRecorded) {
    auto record = AnalyticSweep().record();
    const auto jumpOf = [&] {
        const auto reader = opened(record);
        return borderJump(recordedMotions(AnalyticSweep::measuredPath(), reader), reader);
    };
    EXPECT_NEAR(jumpOf()->join, 1, 1e-3);
    EXPECT_NEAR(jumpOf()->shake, std::sqrt(1494 / 7.0), 1e-3);
    for (auto& matrix : record.leftBorderMat)
        matrix[6] -= 30'000'000;
    EXPECT_NEAR(jumpOf()->join, std::hypot(30, 1), 1e-3);
    record.leftBorderFrames = record.rightBorderFrames = 0;
    EXPECT_FALSE(jumpOf());
}

TEST(PanoramaLayout, ScalesALongSweepDownAndRefusesAnAbsurdOne) {
    const test_support::TestDirectory directory;
    const Sweep sweep = writtenSweep(directory);
    const auto shots = playlist(sweep.record, false);
    auto path = AnalyticSweep::measuredPath();
    path.back().position.x = -40000;
    const auto layout = layOut(sweep.record, shots, recordedMotions(path, sweep.record));
    EXPECT_EQ(layout.canvas.width, 16384);
    EXPECT_EQ(layout.placements.back().bounds.br().x, 16384);
    path.back().position.x = -1e6;
    EXPECT_THROW(layOut(sweep.record, shots, recordedMotions(path, sweep.record)), ToolError);
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
