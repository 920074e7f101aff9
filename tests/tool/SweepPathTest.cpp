#include <gtest/gtest.h>

#include <string>

#include "support/TestDirectory.h"
#include "sweep/PathOfRecord.h"
#include "sweep/RecordFile.h"
#include "sweep/SmoothedPath.h"
#include "sweep/SweepTable.h"
#include "terminal/ToolError.h"
#include "tool/PanVideo.h"
#include "tool/RunTool.h"

namespace orbitwalk::tool {
namespace {

const std::string kHeader = "frame,x,y,a,flag,repeated\n";

TEST(SweepTable, ReadsRowsWithAnyLineEnd) {
    const auto rows = parseSweepTable(kHeader + "0,0,0,0,1,0\r\n1,-12.5,3e-2,0.001,0,1");
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1].x, -12.5f);
    EXPECT_EQ(rows[1].y, 0.03f);
    EXPECT_EQ(rows[1].a, 0.001f);
    EXPECT_EQ(rows[1].flag, 0);
    EXPECT_TRUE(rows[1].repeated);
    EXPECT_FALSE(rows[0].repeated);
}

TEST(SweepTable, NamesTheLineThatIsNone) {
    const auto complaint = [](const std::string& text) -> std::string {
        try {
            parseSweepTable(text);
        } catch (const ToolError& error) {
            return error.what();
        }
        return "";
    };
    for (const char* text : {"", "0,0,0,0,1,0\n", "frame,x\n"})
        EXPECT_EQ(complaint(text), "its first line is not frame,x,y,a,flag,repeated");
    for (const char* row : {"0,0,0,0,1,0\n2,0,0,0,1,0\n", "0,0,0,0,1,0\n1,nan,0,0,1,0\n",
                            "0,0,0,0,1,0\n1,0,inf,0,1,0\n", "0,0,0,0,1,0\n1,0,0,0,1\n",
                            "0,0,0,0,1,0\n1,0,0,0,1,0,0\n", "0,0,0,0,1,0\n\n",
                            "0,0,0,0,1,0\n1, 0,0,0,1,0\n", "0,0,0,0,1,0\n1,1e99,0,0,1,0\n",
                            "0,0,0,0,1,0\n1,0,0,0,7,0\n", "0,0,0,0,1,0\n1,0,0,0,1,3\n"})
        EXPECT_EQ(complaint(kHeader + row), "line 3 is no row of frame 1") << row;
}

SweepRow at(float x, int flag) {
    return {x, 2 * x, 0, flag, false};
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
        wild.push_back(at(i % 2 ? 400.0f : -400.0f, 1));
    const std::vector<SweepRow> single{at(0, 0), at(3, 1)}, none{at(0, 0)};
    for (const auto& rows : {wild, single, none}) {
        const auto path = smoothedPath(rows, 0, 20, 640, 480);
        EXPECT_FALSE(path.feedbackStep);
        EXPECT_EQ(path.maxX, 639);
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
    const auto rows = readSweepTable(directory / "sweep" / "sweep.csv", record.frameCount());
    const auto path = smoothedPath(rows, record.raw().startIndex, record.raw().endIndex,
                                   record.width(), record.height());
    ASSERT_TRUE(path.feedbackStep);
    EXPECT_NO_THROW(requirePathOfRecord(rows, record));
    EXPECT_EQ(path.reference, 1);
    EXPECT_EQ(record.crop().x, path.minX);
    EXPECT_EQ(record.crop().width, path.maxX - path.minX);
    PathPosition measured;
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
