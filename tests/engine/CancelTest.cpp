#include "engine/EngineFixture.h"

namespace {

using testing::IsEmpty;

TEST_F(EngineTest, CancelRightAfterInitFindsNothingToFree) {
    ASSERT_EQ(init(), OBW_RESULT_OK);
    std::filesystem::create_directory(localTmpDir);
    EXPECT_EQ(engine().cancel(), OBW_RESULT_OK);
    EXPECT_EQ(fake_platform::countLog("kelOBWEngine::cancel frameProcessor is NULL"), 1);
    EXPECT_FALSE(tempDirExists());
    EXPECT_EQ(state(), 7);
}

TEST_F(EngineTest, CancelDropsQueuedFramesAndAllowsTheNextStart) {
    at("::abort -- signalEndOfFrames done", fake_writer::openGate);
    initAndStart();
    fake_writer::closeGate();
    ASSERT_EQ(feed(10), OBW_RESULT_OK);
    ASSERT_TRUE(fake_writer::waitForEntered(1));
    EXPECT_EQ(engine().cancel(), OBW_RESULT_OK);
    EXPECT_LT(fake_writer::record().frames.size(), 10u);
    EXPECT_EQ(fake_writer::record().deinits, 1);
    EXPECT_FALSE(tempDirExists());
    EXPECT_EQ(engine().cancel(), OBW_RESULT_INVALID_STATE);
    EXPECT_EQ(trajectory(), OBW_RESULT_FAIL) << "no finder";
    beginCapture(2);
    EXPECT_EQ(listener.awaitAll(), kAllProgress);
}

TEST_F(EngineTest, AStopInTheWrongStateTearsDownAllButTheMeasuringObjects) {
    initAndStart();
    param.fpMP4 = nullptr;
    ASSERT_EQ(start(), OBW_RESULT_INVALID_PARAM);
    EXPECT_EQ(stop(0, 0, framesWithFlags({1})), OBW_RESULT_INVALID_STATE);
    EXPECT_FALSE(tempDirExists());
    EXPECT_EQ(fake_writer::record().deinits, 1);
    EXPECT_EQ(trajectory(), OBW_RESULT_OK);
    ASSERT_EQ(init(), OBW_RESULT_OK);
    EXPECT_EQ(stop(0, 0, framesWithFlags({1})), OBW_RESULT_FAIL) << "no record to fill";
    EXPECT_EQ(state(), 9);
    EXPECT_THAT(listener.percents(), IsEmpty());
}

TEST_F(EngineTest, DeinitDuringPostProcessingLetsItFinish) {
    at("kelOBWEngine::deinit lock engineState=5", fake_writer::openGate);
    fake_writer::closeGate();
    beginCapture(3);
    EXPECT_EQ(deinitOrbitwalkEngine(), 1);
    EXPECT_EQ(listener.percents(), kAllProgress) << "its last call is over, too";
    EXPECT_EQ(initOrbitwalkEngine(&listener), 1) << "a fresh instance";
    EXPECT_EQ(state(), 9);
}

TEST_F(EngineTest, CleanupReturnsToTheFixedDirectoryWhenTheHostHasMovedIt) {
    initAndStart();
    moveTempDirTo("moved");
    std::filesystem::create_directory(localTmpDir);
    EXPECT_EQ(engine().cancel(), OBW_RESULT_OK);
    expectInOrder(
        {"kelOBWEngine::memCleanupForCancel REMOVE_TEMP_DIR_AFTER_END, ERROR!!!!!!! "
         "invlaid path",
         "kelOBWEngine::memCleanupForCancel REMOVE_TEMP_DIR_AFTER_END, "
         "tmpDirName=[Line: 1030]"});
    EXPECT_FALSE(tempDirExists());
    moveTempDirTo("work");
    EXPECT_TRUE(tempDirExists());
}

}  // namespace
