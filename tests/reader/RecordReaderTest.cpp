#include "orbitwalk/RecordReader.h"

#include <gtest/gtest.h>

#include <cctype>
#include <fstream>
#include <sstream>

#include "support/SampleRecord.h"

namespace orbitwalk {
namespace {

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

TEST(RecordReader, RendersFlaggedFramesInsideTheRangeOnly) {
    auto record = sampleRecord();
    record.renderFlag[7] = 2;
    EXPECT_EQ(renderedFrames(opened(record)), (std::vector{2, 3, 4, 6, 8, 9}));
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
        const FrameRange range = opened(record).range();
        EXPECT_EQ(range.begin, c.first) << c.start << " to " << c.end;
        EXPECT_EQ(range.end, c.behind) << c.start << " to " << c.end;
    }
}

TEST(RecordReader, ThrowsOnAnIndexBeyondTheCounts) {
    const auto reader = opened(sampleRecord());
    EXPECT_THROW(reader.renderMatrix(12), std::out_of_range);
    EXPECT_THROW(reader.renderMatrix(-1), std::out_of_range);
    EXPECT_THROW(reader.isRendered(12), std::out_of_range);
    EXPECT_THROW(reader.displacement(12), std::out_of_range);
    EXPECT_THROW(reader.leftBorder(6), std::out_of_range);
    EXPECT_THROW(reader.rightBorder(-1), std::out_of_range);
}

TEST(RecordReader, ReadsTheMatrixOfASingleFrameThatTheEngineLeftUnwritten) {
    auto record = sampleRecord();
    record.numFrames = record.endIndex = 1;
    std::ranges::fill(record.renderMat[0], 0);
    expectPoint(opened(record).renderMatrix(0).frameFromOutput({7, 9}), 7, 9, 0);
}

TEST(RecordReader, MirrorsInsideTheCropRectangle) {
    auto record = sampleRecord();
    record.frontCameraFlipped = 1;
    const auto reader = opened(record);
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
    const auto matrix = opened(record).renderMatrix(3);
    EXPECT_TRUE(matrix.isMirrored());
    expectPoint(matrix.frameFromOutput({100, 50}), -104.4, -10.8, 1e-9);
    expectPoint(matrix.outputFromFrame({-104.4, -10.8}), 100, 50, 1e-9);
    EXPECT_NEAR(matrix.angle(), std::atan2(0.6, 0.8), 1e-12);
}

bool isHexByte(const std::string& word) {
    return word.size() == 2 && std::isxdigit(word[0]) && std::isxdigit(word[1]);
}

/// The record that docs/record.md writes down byte by byte: lines "offset  hex bytes  words".
std::vector<std::byte> documentedRecord() {
    std::vector<std::byte> bytes(OBW_METADATA_SIZE);
    std::ifstream page(ORBITWALK_DOCS "/record.md");
    for (std::string line; std::getline(page, line);) {
        std::istringstream words(line);
        std::size_t offset = 0;
        if (!(words >> offset))
            continue;
        for (std::string word; words >> word && isHexByte(word); ++offset)
            bytes.at(offset) = static_cast<std::byte>(std::stoi(word, nullptr, 16));
    }
    return bytes;
}

// The expected values are those that the page derives by hand.
TEST(WorkedExample, ReadsAsThePageSays) {
    const auto reader = std::get<RecordReader>(RecordReader::open(documentedRecord()));
    EXPECT_EQ(reader.width(), 1280);
    EXPECT_EQ(reader.height(), 720);
    ASSERT_EQ(reader.frameCount(), 2);
    EXPECT_EQ(renderedFrames(reader), (std::vector{0, 1}));
    EXPECT_EQ(reader.crop(), (CropRectangle{100, 56, 1080, 607}));

    const auto matrix = reader.renderMatrix(0);
    EXPECT_EQ(matrix.elements(), (std::array<double, 9>{0.8, -0.6, 0, 0.6, 0.8, 0, -5.6, 9.2, 1}));
    expectPoint(matrix.frameFromOutput({100, 50}), 104.4, -10.8, 1e-9);
    expectPoint(matrix.outputFromFrame({104.4, -10.8}), 100, 50, 1e-9);
    EXPECT_NEAR(matrix.angle(), 0.6435011, 1e-7);

    ASSERT_EQ(reader.leftBorderCount(), 1);
    EXPECT_EQ(reader.rightBorderCount(), 0);
    expectPoint(reader.leftBorder(0).frameFromOutput({0, 0}), -10, 4, 0);
}

}  // namespace
}  // namespace orbitwalk
