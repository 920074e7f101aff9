#include <gtest/gtest.h>

#include <string>

#include "support/TestDirectory.h"
#include "sweep/SmoothedPath.h"
#include "sweep/Sweep.h"
#include "terminal/ToolError.h"
#include "tool/PanVideo.h"
#include "tool/RunTool.h"

namespace orbitwalk::tool {
namespace {

SweepRow at(double x, int flag) {
    return {{x, 2 * x, 0}, flag, false};
}

TEST(SmoothedPath, MeasuresFromTheFirstSelectedFrame) {
    const SweepRow rows[] = {at(5, 1),  at(7, 0),  at(9, 1), at(10, 1),
                             at(12, 0), at(14, 1), at(99, 1)};
    const auto path = smoothedPath(rows, 1, 5, 640, 480);
    EXPECT_EQ(path.reference, 2);
    EXPECT_EQ(path.frames, (std::vector{3, 5}));
    ASSERT_EQ(path.measured.size(), 2u);
    EXPECT_EQ(path.measured[0].x, 1);
    EXPECT_EQ(path.measured[1].x, 5);
    EXPECT_EQ(path.measured[1].y, 10);
    EXPECT_EQ(path.gaussian.size(), 2u);
    EXPECT_EQ(path.smoothed.size(), 2u);
}

TEST(SmoothedPath, FallsBackWhereNoRunKeepsEnough) {
    std::vector<SweepRow> wild;
    for (int i = 0; i < 20; ++i)
        wild.push_back(at(i % 2 ? 400 : -400, 1));
    const std::vector<SweepRow> single{at(0, 0), at(3, 1)}, none{at(0, 0)};
    for (const auto& rows : {wild, single, none}) {
        const auto path = smoothedPath(rows, 0, 20, 640, 480);
        EXPECT_FALSE(path.feedbackStep);
        EXPECT_EQ(path.crop.width, 639);
        EXPECT_EQ(path.smoothed[0].x, 0);
    }
    EXPECT_EQ(smoothedPath(single, 0, 20, 640, 480).reference, 1);
    EXPECT_EQ(smoothedPath(none, 0, 20, 640, 480).reference, -1);
}

// Where a corrected frame stands is its measured position moved by the correction in the record.
TEST(SmoothedPath, IsWhereTheEnginesCorrectionsPutTheFrames) {
    const test_support::TestDirectory directory;
    test_support::writePanVideo(directory / "pan.mp4", {.frames = 16, .stepX = -9, .stepY = 2});
    const auto run = test_support::runTool(
        {"capture", directory / "pan.mp4", "-o", directory / "sweep", "--first", "1"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const RecordReader record = readRecordFile(directory / "sweep" / "sweep.obw");
    const auto rows = readSweepCsv(directory / "sweep" / "sweep.csv", record.frameCount());
    const auto path = smoothedPath(rows, record.raw().startIndex, record.raw().endIndex,
                                   record.width(), record.height());
    ASSERT_TRUE(path.feedbackStep);
    EXPECT_NO_THROW(requirePathOfRecord(rows, record));
    EXPECT_EQ(path.reference, 1);
    EXPECT_EQ(record.crop(), path.crop);
    Trajectory measured;
    for (std::size_t v = 0; v < path.frames.size(); ++v) {
        const int frame = path.reference + static_cast<int>(v);
        const RenderMatrix matrix = record.renderMatrix(frame);
        const PicturePoint correction = matrix.outputFromFrame({0, 0});
        EXPECT_NEAR(measured.x + correction.x, path.smoothed[v].x, 1e-4) << frame;
        EXPECT_NEAR(measured.y + correction.y, path.smoothed[v].y, 1e-4) << frame;
        EXPECT_NEAR(measured.a + matrix.angle(), path.smoothed[v].a, 2e-6) << frame;
        measured = path.measured[v];
    }
    EXPECT_LT(measured.x, -9 * 10);
}

}  // namespace
}  // namespace orbitwalk::tool
