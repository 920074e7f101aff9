#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <memory>
#include <numeric>

#include "orbitwalk/MetaData.h"
#include "support/FakePlatform.h"
#include "support/Transcript.h"

namespace {

using testing::ElementsAre;

/// 2 frames, 1 left and 1 right border frame; the words of a matrix count up from its base.
std::unique_ptr<__kelOBWKDXMetaData> sampleRecord() {
    auto record = std::make_unique<__kelOBWKDXMetaData>();
    const int head[] = {64, 48, 2, 0, 1, 0, 0, 90, 2, 1, 0, 1000, 0, 0, 60, 45, 3, 3};
    std::memcpy(record.get(), head, sizeof head);
    record->viewAngleMaxFrames = 10;
    record->leftBorderFrames = record->rightBorderFrames = 1;
    record->scaledInputTransform[1] = -7;
    int base = 0;
    for (auto* matrix : {record->renderMat[0], record->renderMat[1], record->leftBorderMat[0],
                         record->rightBorderMat[0]})
        std::iota(matrix, matrix + 9, base += 10);
    return record;
}

TEST(PrintMetaInfo, SaysTheRecordInItsOrder) {
    fake_platform::clearLog();
    printOBWMetaInfo(nullptr);
    printOBWMetaInfo(sampleRecord().get());
    test_support::expectTranscript(fake_platform::logTexts("ORBITWALK_ENGINE"), "record");
}

TEST(PrintMetaInfo, PrintsNoMoreEntriesThanTheArraysHold) {
    const auto record = sampleRecord();
    const struct {
        int numFrames, left, right, matrices, transforms;
    } cases[] = {{0, 0, 0, 0, 0},
                 {-5, -1, -1, 0, 0},
                 {INT_MAX, INT_MAX, 11, 1020, 1000},
                 {INT_MIN, 10, INT_MIN, 10, 0}};
    for (const auto& c : cases) {
        record->numFrames = c.numFrames;
        record->leftBorderFrames = c.left;
        record->rightBorderFrames = c.right;
        fake_platform::clearLog();
        printOBWMetaInfo(record.get());
        EXPECT_EQ(fake_platform::countLogPrefix("printOBWMetaInfo : renderMat["), c.matrices);
        EXPECT_EQ(fake_platform::countLogPrefix("printOBWMetaInfo : scaled input"), c.transforms);
    }
}

TEST(FlipWarpMatrix, NegatesTheFirstColumnOfTheFramesMatricesAlone) {
    const auto record = sampleRecord();
    fake_platform::clearLog();
    flipWarpMatrix(nullptr);
    flipWarpMatrix(record.get());
    EXPECT_THAT(record->renderMat[0], ElementsAre(-10, 11, 12, -13, 14, 15, -16, 17, 18));
    EXPECT_THAT(record->renderMat[1], ElementsAre(-20, 21, 22, -23, 24, 25, -26, 27, 28));
    EXPECT_THAT(fake_platform::logTexts(), ElementsAre("flipWarpMatrix : DONE........."));
    flipWarpMatrix(record.get());
    EXPECT_EQ(std::memcmp(record.get(), sampleRecord().get(), sizeof *record), 0);
}

TEST(FlipWarpMatrix, StaysWithinTheMatricesAndRestoresAnyValue) {
    for (const auto& [rows, columns] :
         {std::pair{INT_MAX, INT_MAX}, {INT_MAX, 0}, {3, -3}, {INT_MIN, 3}, {9, 1}, {4, 3}}) {
        const auto record = sampleRecord();
        record->numFrames = INT_MAX;
        record->matrixRows = rows;
        record->matrixCols = columns;
        record->renderMat[999][0] = INT_MIN;
        record->reserved[0] = 77;
        const __kelOBWKDXMetaData before = *record;
        flipWarpMatrix(record.get());
        EXPECT_EQ(record->reserved[0], 77);
        flipWarpMatrix(record.get());
        EXPECT_EQ(std::memcmp(record.get(), &before, sizeof before), 0) << rows << ' ' << columns;
    }
}

}  // namespace
