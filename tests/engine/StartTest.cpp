#include "engine/EngineFixture.h"

namespace {

namespace fs = std::filesystem;

TEST_F(EngineTest, StartRefusesBadSizesBeforeAnythingChanges) {
    ASSERT_EQ(init(), OBW_RESULT_OK);
    param.imageWidth = 3;
    EXPECT_EQ(start(), OBW_RESULT_INVALID_PARAM);
    expectInOrder({"kelOBWEngine::start : ERROR! Invalid Params: 3x48 \n"});
    EXPECT_EQ(state(), 9);
    EXPECT_FALSE(tempDirExists());
}

TEST_F(EngineTest, AStartWithoutATemporaryDirectoryLeavesTheEngineIdle) {
    ASSERT_EQ(init(), OBW_RESULT_OK);
    fs::create_directory_symlink(directory / "", directory / "link");
    const struct {
        const char* tempDir;
        const char* line;
    } cases[] = {{"missing/work", "kelOBWEngine::start  : MKDIR FAILED"},
                 {"link", "kelOBWEngine : start : removeTempDir FALIED retrun"}};
    for (const auto& [tempDir, line] : cases) {
        moveTempDirTo(tempDir);
        EXPECT_EQ(start(), OBW_RESULT_TEMP_DIR_ERROR);
        expectInOrder({line});
        EXPECT_EQ(state(), 9);
    }
    EXPECT_EQ(fake_writer::record().inits.size(), 0u);
    moveTempDirTo("work");
    EXPECT_EQ(start(), OBW_RESULT_OK);
}

TEST_F(EngineTest, StartClearsWhatAnEarlierCaptureLeftInTheTemporaryDirectory) {
    fs::create_directories(directory / "work/RW_LIB");
    test_support::writeFile(directory / "work/RW_LIB/leftover", "x");
    initAndStart();
    EXPECT_TRUE(fs::is_empty(localTmpDir));
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
    const std::string dir(localTmpDir), unlink = "kelOBWEngine::removeTempDir, ";
    for (const bool engineering : {false, true}) {
        fake_platform::setBuildType(engineering ? "eng" : "userdebug");
        fake_platform::clearLog();
        fs::create_directory(localTmpDir);
        test_support::writeFile(dir + "file", "x");
        initAndStart();
        deinitOrbitwalkEngine();
        std::string log;
        for (const std::string& text : fake_platform::logTexts("ORBITWALK_ENGINE"))
            log += text;
        EXPECT_EQ(log.find(directory / "") != std::string::npos, engineering);
        EXPECT_EQ(fake_platform::countLog(
                      unlink + (engineering ? "unlink " + dir + "/file, " : "LINE:  : 254, ")),
                  1);
    }
}

}  // namespace
