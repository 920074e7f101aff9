#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <ostream>

#include "orbitwalk/RecordReader.h"
#include "support/SampleRecord.h"

namespace orbitwalk {
namespace {

using Change = std::function<void(__kelOBWKDXMetaData&)>;

std::optional<RecordFault> faultOf(const std::vector<std::byte>& bytes) {
    const auto opened = RecordReader::open(bytes);
    const auto* refusal = std::get_if<RecordRefusal>(&opened);
    if (!refusal)
        return {};
    EXPECT_FALSE(refusal->text.empty());
    return refusal->fault;
}

std::optional<RecordFault> faultAfter(const Change& change) {
    auto record = sampleRecord();
    change(record);
    return faultOf(recordBytes(record));
}

using Record = __kelOBWKDXMetaData;
constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();

void setCrop(Record& r, int x, int y, int width, int height) {
    const int crop[4] = {x, y, width, height};
    std::ranges::copy(crop, r.cropParam);
}

/// The first elements of a frame's matrix.
Change setMatrix(int frame, std::initializer_list<std::int32_t> elements) {
    return [frame, values = std::vector(elements)](Record& r) {
        std::ranges::copy(values, r.renderMat[frame]);
    };
}

TEST(RecordCheck, RefusesBytesThatAreNotExactlyOneRecord) {
    auto bytes = recordBytes(sampleRecord());
    EXPECT_EQ(faultOf({}), RecordFault::Size);
    bytes.pop_back();
    EXPECT_EQ(faultOf(bytes), RecordFault::Size);
    bytes.resize(OBW_METADATA_SIZE + 1);
    EXPECT_EQ(faultOf(bytes), RecordFault::Size);
    EXPECT_EQ(faultOf(std::vector<std::byte>(OBW_METADATA_SIZE)), RecordFault::FrameSize)
        << "a buffer that no capture filled";
}

TEST(RecordCheck, RefusesWhatCannotBePlayedAndSaysWhy) {
    const std::pair<RecordFault, Change> cases[] = {
        {RecordFault::FrameSize, [](Record& r) { r.width = 3; }},
        {RecordFault::FrameSize, [](Record& r) { r.height = -720; }},
        {RecordFault::FrameSize, [](Record& r) { r.width = 32768; }},
        {RecordFault::FrameSize, [](Record& r) { r.width = r.height = 32767; }},
        {RecordFault::Capacity, [](Record& r) { r.maxFrames = 999; }},
        {RecordFault::Capacity, [](Record& r) { r.viewAngleMaxFrames = 11; }},
        {RecordFault::MatrixShape, [](Record& r) { r.matrixRows = 2; }},
        {RecordFault::MatrixShape, [](Record& r) { r.matrixCols = 4; }},
        {RecordFault::FrameCount, [](Record& r) { r.numFrames = 1001; }},
        {RecordFault::FrameCount, [](Record& r) { r.numFrames = -1; }},
        {RecordFault::Range, [](Record& r) { r.startIndex = -1; }},
        {RecordFault::Range, [](Record& r) { r.endIndex = -1; }},
        {RecordFault::Range, [](Record& r) { r.endIndex = 13; }},
        {RecordFault::BorderCount, [](Record& r) { r.leftBorderFrames = 11; }},
        {RecordFault::BorderCount, [](Record& r) { r.rightBorderFrames = 11; }},
        {RecordFault::BorderCount, [](Record& r) { r.rightBorderFrames = least; }},
        {RecordFault::Code, [](Record& r) { r.captureDirection = 0; }},
        {RecordFault::Code, [](Record& r) { r.captureDirection = 5; }},
        {RecordFault::Code, [](Record& r) { r.frontCameraFlipped = 2; }},
        {RecordFault::Code, [](Record& r) { r.algoVersion = NAN; }},
        {RecordFault::Crop, [](Record& r) { setCrop(r, 0, 0, 0, 720); }},
        {RecordFault::Crop, [](Record& r) { setCrop(r, 0, 0, 1281, 720); }},
        {RecordFault::Crop, [](Record& r) { setCrop(r, 1, 0, 1280, 720); }},
        {RecordFault::Crop, [](Record& r) { setCrop(r, 0, -1, 100, 100); }},
        {RecordFault::Crop, [](Record& r) { setCrop(r, most, most, most, most); }},
        {RecordFault::MatrixForm, [](Record& r) { r.renderMat[11][2] = 2; }},
        {RecordFault::MatrixForm, [](Record& r) { r.rightBorderMat[5][5] = -2; }},
        {RecordFault::MatrixForm, [](Record& r) { r.leftBorderMat[0][8] = 0; }},
        {RecordFault::MatrixForm, setMatrix(3, {0, 0, 0, 0, 0, 0, 0, 0, 0})},
        {RecordFault::MatrixSingular, setMatrix(0, {0, 0, 0, 0, 0})},
        {RecordFault::MatrixSingular, setMatrix(7, {600000, 800000, 0, 300000, 400000})},
        {RecordFault::MatrixSingular, setMatrix(7, {150, 0, 0, 0, 150})},
        {RecordFault::MatrixSingular, setMatrix(7, {least, least, 0, least, least})},
    };
    int index = 0;
    for (const auto& [fault, change] : cases)
        EXPECT_EQ(faultAfter(change), fault) << "case " << index++;
}

TEST(RecordCheck, TakesEverythingThatTheEngineWrites) {
    const std::pair<const char*, Change> cases[] = {
        {"as it is", [](Record&) {}},
        {"default range, one beyond the last frame",
         [](Record& r) {
             r.startIndex = 0;
             r.endIndex = 12;
         }},
        {"a start beyond the end, as the caller asked", [](Record& r) { r.startIndex = most; }},
        {"whole picture after a still sweep", [](Record& r) { setCrop(r, 0, 0, 1280, 720); }},
        {"fallback without correction", [](Record& r) { setCrop(r, 0, 0, 1279, 719); }},
        {"orientation of a careless caller", [](Record& r) { r.orientation = -45; }},
        {"flags of a careless caller", [](Record& r) { r.renderFlag[0] = least; }},
        {"translations that saturated", setMatrix(4, {1000000, 0, 0, 0, 1000000, 0, least, most})},
        {"displacements that saturated", [](Record& r) { r.scaledInputTransform[9] = most; }},
        {"one truncated to 0.999999", [](Record& r) { r.renderMat[4][8] = 999999; }},
        {"no frames", [](Record& r) { r.numFrames = r.endIndex = 0; }},
        {"matrices mirrored by the library", setMatrix(3, {-1000000, 0, 0, 0, 1000000})},
        {"smallest frame",
         [](Record& r) {
             r.width = r.height = 4;
             setCrop(r, 0, 0, 3, 3);
         }},
        {"largest frame",
         [](Record& r) {
             r.width = 32767;
             r.height = 21845;
         }},
        {"full arrays",
         [](Record& r) {
             r.numFrames = r.endIndex = 1000;
             for (int i = 12; i < 1000; ++i)
                 std::ranges::copy(r.renderMat[0], r.renderMat[i]);
             r.leftBorderFrames = 10;
             for (int k = 6; k < 10; ++k)
                 std::ranges::copy(r.renderMat[0], r.leftBorderMat[k]);
         }},
    };
    for (const auto& [name, change] : cases)
        EXPECT_EQ(faultAfter(change), std::nullopt) << name;
}

TEST(RecordCheck, LooksOnlyAtEntriesThatTheCountsCover) {
    EXPECT_EQ(faultAfter([](Record& r) {
                  r.renderMat[12][8] = 5;
                  r.leftBorderMat[6][0] = most;
                  r.reserved[0] = r.reserved2 = -1;
              }),
              std::nullopt);
}

}  // namespace
}  // namespace orbitwalk
