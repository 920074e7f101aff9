#include <filesystem>
#include <fstream>

#include "engine/EngineFixture.h"

namespace {

namespace fs = std::filesystem;

TEST_F(EngineTest, StartRefusesBadSizesBeforeAnythingChanges) {
    ASSERT_EQ(init(), OBW_RESULT_OK);
    for (const auto& [width, height] :
         {std::pair{0, 48}, {64, 0}, {3, 48}, {64, -1}, {32768, 48}}) {
        param.imageWidth = width;
        param.imageHeight = height;
        fake_platform::clearLog();
        EXPECT_EQ(start(), OBW_RESULT_INVALID_PARAM);
        EXPECT_EQ(
            fake_platform::countLog("kelOBWEngine::start : ERROR! Invalid Params: " +
                                    std::to_string(width) + "x" + std::to_string(height) + " \n"),
            1);
        EXPECT_EQ(state(), 9);
    }
    EXPECT_FALSE(tempDirExists());
}

TEST_F(EngineTest, AStartWithoutARecordBlocksFurtherOnesUntilInit) {
    ASSERT_EQ(init(), OBW_RESULT_OK);
    _OBW_ENGINE_INIT_PARAM bad = param;
    bad.pWideReelInfo = nullptr;
    EXPECT_EQ(engine().start(&bad), OBW_RESULT_INVALID_PARAM);
    EXPECT_EQ(state(), 1);
    EXPECT_EQ(start(), OBW_RESULT_INVALID_STATE);
    ASSERT_EQ(init(), OBW_RESULT_OK);
    EXPECT_EQ(start(), OBW_RESULT_OK);
}

TEST_F(EngineTest, AStartWithoutATemporaryDirectoryLeavesTheEngineIdle) {
    ASSERT_EQ(init(), OBW_RESULT_OK);
    const std::string good(localTmpDir);
    std::snprintf(localTmpDir, sizeof localTmpDir, "%s/missing/work/", root.c_str());
    EXPECT_EQ(start(), OBW_RESULT_TEMP_DIR_ERROR);
    EXPECT_EQ(fake_platform::countLog("kelOBWEngine::start  : MKDIR FAILED"), 1);
    EXPECT_EQ(state(), 9);

    std::snprintf(localTmpDir, sizeof localTmpDir, "%s/link/", root.c_str());
    fs::create_directory_symlink(root, root + "/link");
    EXPECT_EQ(start(), OBW_RESULT_TEMP_DIR_ERROR);
    EXPECT_EQ(fake_platform::countLog("kelOBWEngine : start : removeTempDir FALIED retrun"), 1);
    EXPECT_EQ(state(), 9);
    EXPECT_EQ(fake_writer::record().inits.size(), 0u);

    std::snprintf(localTmpDir, sizeof localTmpDir, "%s", good.c_str());
    EXPECT_EQ(start(), OBW_RESULT_OK);
}

TEST_F(EngineTest, StartClearsWhatAnEarlierCaptureLeftInTheTemporaryDirectory) {
    fs::create_directories(tempDir / "RW_LIB");
    std::ofstream(tempDir / "RW_LIB" / "leftover") << "x";
    initAndStart();
    EXPECT_TRUE(fs::is_empty(tempDir));
}

TEST_F(EngineTest, ASecondStartBeginsAnew) {
    initAndStart();
    ASSERT_EQ(feed(3), OBW_RESULT_OK);
    param.orientation = 90;
    ASSERT_EQ(start(), OBW_RESULT_OK);
    EXPECT_EQ(fake_writer::record().deinits, 1) << "the first recording was ended";
    feedAndStop(2);
    EXPECT_EQ(listener.awaitAll(), kAllProgress);
    EXPECT_EQ(record.numFrames, 2);
    EXPECT_EQ(record.orientation, 270);
    EXPECT_EQ(fake_writer::record().frames.size(), 5u);
    EXPECT_EQ(fake_platform::countLogPrefix("kelOBWEngine::memCleanup"), 0);
}

TEST_F(EngineTest, PathsStayOutOfTheLogUnlessTheBuildIsAnEngineeringOne) {
    for (const bool engineering : {false, true}) {
        fake_platform::setBuildType(engineering ? "eng" : "userdebug");
        fake_platform::clearLog();
        init();
        start();
        cancelOrbitwalkEngine();
        deinitOrbitwalkEngine();
        int lines = 0;
        for (const std::string& text : fake_platform::logTexts("ORBITWALK_ENGINE"))
            lines += text.find(root) != std::string::npos;
        EXPECT_EQ(lines > 0, engineering) << lines;
    }
}

}  // namespace
