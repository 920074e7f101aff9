#include "engine/EngineFixture.h"

namespace {

namespace fs = std::filesystem;

TEST_F(EngineTest, StartRefusesBadSizesBeforeAnythingChanges) {
    ASSERT_EQ(init(), OBW_RESULT_OK);
    for (const auto& [width, height] :
         {std::pair{0, 48}, {64, 0}, {3, 48}, {64, -1}, {32768, 48}}) {
        param.imageWidth = width;
        param.imageHeight = height;
        EXPECT_EQ(start(), OBW_RESULT_INVALID_PARAM);
        expectInOrder({"kelOBWEngine::start : ERROR! Invalid Params: " + std::to_string(width) +
                       "x" + std::to_string(height) + " \n"});
        EXPECT_EQ(state(), 9);
    }
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
    for (const bool engineering : {false, true}) {
        fake_platform::setBuildType(engineering ? "eng" : "userdebug");
        fake_platform::clearLog();
        init();
        start();
        cancelOrbitwalkEngine();
        deinitOrbitwalkEngine();
        int lines = 0;
        for (const std::string& text : fake_platform::logTexts("ORBITWALK_ENGINE"))
            lines += text.find(localTmpDir) != std::string::npos;
        EXPECT_EQ(lines > 0, engineering) << lines;
    }
}

}  // namespace
