#include "orbitwalk/RecordReader.h"

#include <gtest/gtest.h>

#include "support/SampleRecord.h"

namespace orbitwalk {
namespace {

RecordReader open(const __kelOBWKDXMetaData& record) {
    return std::get<RecordReader>(RecordReader::open(recordBytes(record)));
}

std::vector<int> renderedFrames(const RecordReader& reader) {
    std::vector<int> frames;
    for (int i = 0; i < reader.frameCount(); ++i)
        if (reader.isRendered(i))
            frames.push_back(i);
    return frames;
}

void expectPoint(PicturePoint point, double x, double y, double tolerancePx) {
    EXPECT_NEAR(point.x, x, tolerancePx);
    EXPECT_NEAR(point.y, y, tolerancePx);
}

TEST(RecordReader, GivesTheFieldsOfTheHeader) {
    const auto reader = open(sampleRecord());
    EXPECT_EQ(reader.width(), 1280);
    EXPECT_EQ(reader.height(), 720);
    EXPECT_EQ(reader.orientation(), 270);
    EXPECT_EQ(reader.direction(), 2);
    EXPECT_FALSE(reader.isFlipped());
    EXPECT_EQ(reader.crop().x, 40);
    EXPECT_EQ(reader.crop().y, 22);
    EXPECT_EQ(reader.crop().width, 1200);
    EXPECT_EQ(reader.crop().height, 675);
    EXPECT_DOUBLE_EQ(reader.displacement(4), 51);
}

TEST(RecordReader, RendersFlaggedFramesInsideTheRangeOnly) {
    auto record = sampleRecord();
    record.renderFlag[7] = 2;
    EXPECT_EQ(renderedFrames(open(record)), (std::vector{2, 3, 4, 6, 8, 9}));
}

TEST(RecordReader, LimitsTheRangeToTheFramesThereAre) {
    struct Case {
        int start, end, frames, first, behind;
    };
    for (const Case c : {Case{0, 12, 12, 0, 12}, Case{0, 11, 12, 0, 12}, Case{2, 9, 12, 2, 10},
                         Case{9, 2, 12, 3, 3}, Case{5000, 12, 12, 12, 12}, Case{0, 0, 0, 0, 0}}) {
        auto record = sampleRecord();
        record.startIndex = c.start;
        record.endIndex = c.end;
        record.numFrames = c.frames;
        const FrameRange range = open(record).range();
        EXPECT_EQ(range.begin, c.first) << c.start << " to " << c.end;
        EXPECT_EQ(range.end, c.behind) << c.start << " to " << c.end;
    }
}

TEST(RecordReader, ThrowsOnAnIndexBeyondTheCounts) {
    const auto reader = open(sampleRecord());
    EXPECT_THROW(reader.renderMatrix(12), std::out_of_range);
    EXPECT_THROW(reader.renderMatrix(-1), std::out_of_range);
    EXPECT_THROW(reader.isRendered(12), std::out_of_range);
    EXPECT_THROW(reader.displacement(12), std::out_of_range);
    EXPECT_THROW(reader.leftBorder(6), std::out_of_range);
    EXPECT_THROW(reader.rightBorder(-1), std::out_of_range);
}

// The correction moves the frame 10 px right and 4 px up: the output picture shows the frame's
// corner there, and at its own corner what lay 10 px further left and 4 px further down.
TEST(RecordReader, ShowsAMovedFrameWhereTheCorrectionPutsIt) {
    auto record = sampleRecord();
    const std::int32_t moved[9] = {1000000, 0, 0, 0, 1000000, 0, -10000000, 4000000, 1000000};
    std::ranges::copy(moved, record.leftBorderMat[0]);
    const auto matrix = open(record).leftBorder(0);
    expectPoint(matrix.outputFromFrame({0, 0}), 10, -4, 0);
    expectPoint(matrix.frameFromOutput({0, 0}), -10, 4, 0);
    EXPECT_EQ(matrix.angle(), 0);
}

TEST(RecordReader, ReadsTheMatrixOfASingleFrameThatTheEngineLeftUnwritten) {
    auto record = sampleRecord();
    record.numFrames = record.endIndex = 1;
    std::ranges::fill(record.renderMat[0], 0);
    expectPoint(open(record).renderMatrix(0).frameFromOutput({7, 9}), 7, 9, 0);
}

TEST(RecordReader, MirrorsInsideTheCropRectangle) {
    auto record = sampleRecord();
    record.frontCameraFlipped = 1;
    const auto reader = open(record);
    EXPECT_TRUE(reader.isFlipped());
    expectPoint(reader.mirrored({40, 100}), 1239, 100, 0);  // first column of 1200 from 40
    expectPoint(reader.mirrored({1239, 100}), 40, 100, 0);
}

// A negated column 0 negates the x of the frame's point and leaves the correction what it was.
TEST(RecordReader, ReadsMatricesMirroredByTheLibrary) {
    auto record = sampleRecord();
    const std::int32_t turned[9] = {800000, -600000,  0,       600000, 800000,
                                    0,      -5600000, 9200000, 1000000};
    std::ranges::copy(turned, record.renderMat[3]);
    for (const int i : {0, 3, 6})
        record.renderMat[3][i] *= -1;
    const auto matrix = open(record).renderMatrix(3);
    EXPECT_TRUE(matrix.isMirrored());
    expectPoint(matrix.frameFromOutput({100, 50}), -104.4, -10.8, 1e-9);
    expectPoint(matrix.outputFromFrame({-104.4, -10.8}), 100, 50, 1e-9);
    EXPECT_NEAR(matrix.angle(), std::atan2(0.6, 0.8), 1e-12);
}

}  // namespace
}  // namespace orbitwalk
