#include <thread>

#include "engine/EngineFixture.h"

namespace {

using testing::IsEmpty;

TEST_F(EngineTest, CancelRightAfterInitFindsNothingToFree) {
    ASSERT_EQ(init(), OBW_RESULT_OK);
    std::filesystem::create_directory(tempDir);
    EXPECT_EQ(engine().cancel(), OBW_RESULT_OK);
    EXPECT_EQ(fake_platform::countLog("kelOBWEngine::cancel frameProcessor is NULL"), 1);
    EXPECT_EQ(fake_platform::countLog("kelOBWEngine : memCleanupForCancel : removeTempDir SUCCESS"),
              1);
    EXPECT_FALSE(tempDirExists());
    EXPECT_EQ(state(), 7);
}

TEST_F(EngineTest, CancelDropsQueuedFramesAndAllowsTheNextStart) {
    initAndStart();
    fake_writer::closeGate();
    ASSERT_EQ(feed(10), OBW_RESULT_OK);
    ASSERT_TRUE(fake_writer::waitForEntered(1));
    std::thread opener([] {
        while (fake_platform::countLog("::abort -- signalEmergencyExit") == 0)
            std::this_thread::yield();
        fake_writer::openGate();
    });
    EXPECT_EQ(engine().cancel(), OBW_RESULT_OK);
    opener.join();
    EXPECT_LT(fake_writer::record().frames.size(), 10u);
    EXPECT_EQ(fake_writer::record().deinits, 1);
    EXPECT_FALSE(tempDirExists());
    EXPECT_EQ(engine().cancel(), OBW_RESULT_INVALID_STATE);
    float x = 1, y = 1, a = 1;
    getTrajectory(frame.data(), &x, &y, &a);
    EXPECT_EQ(x, 0.0f);
    beginCapture(2);
    EXPECT_EQ(listener.awaitAll(), kAllProgress);
}

TEST_F(EngineTest, AStopInTheWrongStateTearsDownAllButTheMeasuringObjects) {
    initAndStart();
    _OBW_ENGINE_INIT_PARAM bad = param;
    bad.fpMP4 = nullptr;
    ASSERT_EQ(engine().start(&bad), OBW_RESULT_INVALID_PARAM);
    EXPECT_EQ(stop(0, 0, framesWithFlags({1})), OBW_RESULT_INVALID_STATE);
    EXPECT_FALSE(tempDirExists());
    EXPECT_EQ(fake_writer::record().deinits, 1);
    float x = 1, y = 1, a = 1;
    EXPECT_EQ(engine().computeTrajectory(frame.data(), &x, &y, &a), OBW_RESULT_OK);
    ASSERT_EQ(init(), OBW_RESULT_OK);
    EXPECT_EQ(stop(0, 0, framesWithFlags({1})), OBW_RESULT_FAIL) << "no record to fill";
    EXPECT_EQ(state(), 9);
    EXPECT_THAT(listener.percents(), IsEmpty());
}

TEST_F(EngineTest, DeinitFreesWhatAFailedPostProcessingLeft) {
    fake_writer::setEncodeResult(0);
    beginCapture(2);
    awaitPostProcessing();
    EXPECT_TRUE(tempDirExists());
    fake_platform::clearLog();
    EXPECT_EQ(deinitOrbitwalkEngine(), 1);
    EXPECT_FALSE(tempDirExists());
    for (const char* text :
         {"p_mFindTransform Release DONE ", "p_mFindTransform Destroy DONE ",
          "p_mVideoStabilizer Release DONE ", "p_mVideoStabilizer Destroy DONE "})
        EXPECT_EQ(
            fake_platform::countLog(std::string("kelOBWEngine::memCleanupForCancel : ") + text), 1);
    EXPECT_EQ(fake_platform::countLog("kelOBWEngine::ResetInstance -- done"), 1);
}

TEST_F(EngineTest, DeinitDuringPostProcessingLetsItFinish) {
    fake_writer::closeGate();
    beginCapture(3);
    std::thread opener([] {
        while (fake_platform::countLogPrefix("kelOBWEngine::deinit lock engineState=5") == 0)
            std::this_thread::yield();
        fake_writer::openGate();
    });
    EXPECT_EQ(deinitOrbitwalkEngine(), 1);
    opener.join();
    EXPECT_EQ(listener.percents(), kAllProgress) << "its last call is over, too";
    EXPECT_EQ(initOrbitwalkEngine(&listener), 1) << "a fresh instance";
    EXPECT_EQ(state(), 9);
}

TEST_F(EngineTest, CleanupReturnsToTheFixedDirectoryWhenTheHostHasMovedIt) {
    initAndStart();
    const std::string old(localTmpDir);
    std::snprintf(localTmpDir, sizeof localTmpDir, "%s/moved/", root.c_str());
    std::filesystem::create_directory(root + "/moved");
    EXPECT_EQ(engine().cancel(), OBW_RESULT_OK);
    EXPECT_EQ(
        fake_platform::countLog("kelOBWEngine::memCleanupForCancel REMOVE_TEMP_DIR_AFTER_END, "
                                "ERROR!!!!!!! invlaid path"),
        1);
    EXPECT_FALSE(std::filesystem::exists(root + "/moved"));
    EXPECT_TRUE(tempDirExists());
    std::snprintf(localTmpDir, sizeof localTmpDir, "%s", old.c_str());
}

}  // namespace
