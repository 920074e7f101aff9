#include <cstring>

#include "engine/EngineFixture.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr int kIdentity[] = {1000000, 0, 0, 0, 1000000, 0, 0, 0, 1000000};

TEST_F(EngineTest, AStillCaptureGivesARecordOfIdentities) {
    param.frontCamFlipped = true;
    capture(framesWithFlags({1, 1, 1}), 0, 2);
    __kelOBWKDXMetaData expected{};
    // No correction moves a frame, so all of the picture is common.
    const int head[] = {64, 48, 3, 0, 2, 0, 0, 0, 1, 1, 1, 1000, 0, 0, 64, 48, 3, 3};
    std::memcpy(&expected, head, sizeof head);
    expected.viewAngleMaxFrames = 10;
    expected.leftBorderFrames = expected.rightBorderFrames = 6;
    for (int i = 0; i < 3; ++i) {
        std::memcpy(expected.renderMat[i], kIdentity, sizeof kIdentity);
        expected.renderFlag[i] = 1;
    }
    for (int i = 0; i < 6; ++i)  // no margin to widen the view into
        for (auto* matrices : {expected.leftBorderMat, expected.rightBorderMat})
            std::memcpy(matrices[i], kIdentity, sizeof kIdentity);
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof expected), 0);
    EXPECT_FALSE(tempDirExists());
    const auto writer = fake_writer::record();
    EXPECT_EQ(writer.frames.size(), 3u);
    ASSERT_EQ(writer.inits.size(), 1u);
    EXPECT_EQ(writer.inits[0].file, stream);
    EXPECT_EQ(writer.inits[0].tempDir, std::string(localTmpDir) + "RW_LIB/");
}

TEST_F(EngineTest, StopSendsTheSelectedFramesAgainstTheFirstOfThem) {
    Frames frames;
    for (int i = 0; i < 5; ++i)
        frames.push_back({0.5f * static_cast<float>(i), 1.0f, 0, i == 4 ? 7 : 1, 100 + i, 200 + i});
    capture(frames, 1, 3, OBW_DIRECTION_RIGHT2LEFT);
    const std::string sent =
        "kelOBWEngine::stop sendTransformationMatrix done : stat = 1, transformation = ";
    EXPECT_EQ(fake_platform::countLogPrefix(sent), 2);
    expectInOrder(
        {"kelOBWEngine::stop save first valid frame trajectory = "
         "[0.500000, 1.000000, 0.000000]",
         sent + "[0.500000, 0.000000, 0.000000]", sent + "[1.000000, 0.000000, 0.000000]",
         "kelOBWEngine::stop : other info : 7, 104, 204"});
    EXPECT_THAT(std::vector(record.scaledInputTransform, record.scaledInputTransform + 6),
                ElementsAre(0, 0, 500000, 1000000, 0, 0));
    EXPECT_THAT(std::vector(record.renderFlag, record.renderFlag + 6),
                ElementsAre(1, 1, 1, 1, 7, 0));
    EXPECT_EQ(record.startIndex, 1);
    EXPECT_EQ(record.endIndex, 3);
    EXPECT_EQ(record.captureDirection, 2);
}

TEST_F(EngineTest, AStopWithOneOrNoSelectedFrameSendsOnePoint) {
    const std::string sent = "kelOBWEngine::stop sendTransformationMatrix done ";
    for (const auto& flags : {std::vector{0, 0, 0}, {0, 1, 0}}) {
        fake_platform::clearLog();
        capture(framesWithFlags(flags), 0, 2);
        EXPECT_EQ(fake_platform::countLog(sent + "for Single Valid Frame : stat = 1 "), 1);
        EXPECT_EQ(fake_platform::countLogPrefix(sent), 1);
        for (int i = 0; i < 3; ++i)
            EXPECT_THAT(record.renderMat[i], ElementsAreArray(kIdentity));
        EXPECT_EQ(record.leftBorderFrames, 0);
        EXPECT_EQ(record.rightBorderFrames, 0);
        EXPECT_THAT(record.cropParam, ElementsAre(0, 0, 63, 47)) << "no correction";
    }
}

TEST_F(EngineTest, InvalidRangesAndDirectionsFallBackToDefaults) {
    const struct {
        int first, last;
        OBWDirection direction;
        int start, end, recorded;
    } cases[] = {
        {-1, 1, OBW_DIRECTION_TOP2BOTTOM, 0, 2, 1},
        {0, 3, OBW_DIRECTION_BOTTOM2TOP, 0, 2, 1},
        {1, 2, OBW_DIRECTION_RIGHT2LEFT, 1, 2, 2},
        {0, -1, static_cast<OBWDirection>(99), 0, 2, 1},
    };
    for (const auto& c : cases) {
        capture(framesWithFlags({1, 1}), c.first, c.last, c.direction);
        EXPECT_EQ(record.startIndex, c.start);
        EXPECT_EQ(record.endIndex, c.end);
        EXPECT_EQ(record.captureDirection, c.recorded);
    }
}

// Whatever the orientation, the displacement that is kept is that along x.
TEST_F(EngineTest, OrientationAndFlipAreRecordedAsTheRecordNamesThem) {
    const int cases[][2] = {{0, 0}, {90, 270}, {270, 90}, {180, 180}, {360, 360}, {-90, -90}};
    reinterpret_cast<unsigned char&>(param.frontCamFlipped) = 0x80;  // as C may leave it
    for (const auto& [given, recorded] : cases) {
        param.orientation = given;
        capture({{0, 0, 0, 1, 0, 0}, {3, 5, 0, 1, 0, 0}}, 0, 1);
        EXPECT_EQ(record.orientation, recorded);
        EXPECT_EQ(record.frontCameraFlipped, 1);
        EXPECT_EQ(record.scaledInputTransform[1], 3000000) << given;
    }
}

TEST_F(EngineTest, FramesBeyondTheRecordsCapacityAreStillEncoded) {
    initAndStart();
    EXPECT_EQ(feed(1001), OBW_RESULT_OK);
    ASSERT_EQ(stop(0, 999, framesWithFlags(std::vector<int>(1000, 1))), OBW_RESULT_OK);
    EXPECT_EQ(listener.awaitAll(), kAllProgress);
    EXPECT_EQ(fake_writer::record().frames.size(), 1001u);
    EXPECT_EQ(record.numFrames, 1000);
    EXPECT_EQ(record.renderFlag[999], 1);
    EXPECT_EQ(record.viewAngleMaxFrames, 10);
}

TEST_F(EngineTest, OneProcessMakesOneCaptureAfterAnother) {
    beginCapture(4);
    ASSERT_EQ(listener.awaitAll(), kAllProgress);
    listener.forget();
    ASSERT_EQ(start(), OBW_RESULT_OK) << "state 7 accepts a start";
    expectInOrder({"kelOBWEngine::start lock done, engineState=4, numCapture=1"});
    feedAndStop(2);
    EXPECT_EQ(listener.awaitAll(), kAllProgress);
    EXPECT_EQ(record.numFrames, 2);
    EXPECT_EQ(fake_writer::record().inits.size(), 2u);
    EXPECT_EQ(fake_writer::record().deinits, 2);
}

TEST_F(EngineTest, TheTrajectoryIsTheFindersAndTheFramesAreCopied) {
    ASSERT_EQ(initOrbitwalkEngine(&listener), 1);
    EXPECT_EQ(getSizeOrbitwalkInformation(), 52808);
    ASSERT_EQ(startOrbitwalkEngine(&param), 1);
    fake_writer::closeGate();
    for (int i = 0; i < 20; ++i) {  // more than the ring's first slots
        std::fill(frame.begin(), frame.end(), static_cast<unsigned char>(i));
        float x = 5, y = 5, a = 5;
        getTrajectory(frame.data(), &x, &y, &a);
        EXPECT_THAT((std::vector{x, y, a}), Each(0.0f)) << "a picture without texture";
        ASSERT_EQ(provideFrameandTrajectory(frame.data(), x, y, a), 1);
    }
    fake_writer::openGate();
    auto frames = framesWithFlags(std::vector<int>(20, 1));
    ASSERT_EQ(stopOrbitwalkEngine(0, 19, frames.data(), 20, OBW_DIRECTION_LEFT2RIGHT), 1);
    ASSERT_EQ(listener.awaitAll(), kAllProgress);
    const auto encoded = fake_writer::record().frames;
    ASSERT_EQ(encoded.size(), 20u);
    for (unsigned char i = 0; i < 20; ++i)
        EXPECT_THAT(encoded[i], Each(i));
}

// Stop plans for flag 1 alone; the record gives a matrix to whatever is not 0.
TEST_F(EngineTest, AFlagOfSevenInsideTheRangeTakesTheNextFramesMatrix) {
    constexpr int kFrames = 16;
    const auto matricesWith = [&](int flag) {
        Frames path;
        for (int i = 0; i < kFrames; ++i)
            path.push_back({0.5f * static_cast<float>(i * i % 7), static_cast<float>(i % 3),
                            0.001f * static_cast<float>(i * i % 11), i == 3 ? flag : 1, 0, 0});
        capture(path, 0, kFrames - 1);
        std::vector<std::vector<std::int32_t>> matrices;
        for (const auto& matrix : record.renderMat)
            matrices.emplace_back(std::begin(matrix), std::end(matrix));
        return matrices;
    };
    const auto skipped = matricesWith(0), seven = matricesWith(7);
    EXPECT_NE(skipped[4], skipped[5]) << "the frames' matrices cannot be told apart";
    EXPECT_EQ(seven[2], skipped[2]);
    for (int i = 3; i < kFrames - 2; ++i)
        EXPECT_EQ(seven[i], skipped[i + 1]) << i;
}

}  // namespace
