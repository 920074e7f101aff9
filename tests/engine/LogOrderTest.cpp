#include "engine/EngineFixture.h"
#include "support/Transcript.h"

namespace {

using test_support::transcript;

// One thread's lines, those of the post-processing thread, and the ends that are not a stop.

TEST_F(EngineTest, ACaptureSaysItsStepsInOrder) {
    param.orientation = 90;
    auto frames = framesWithFlags({1, 1});
    initOrbitwalkEngine(&listener);
    startOrbitwalkEngine(&param);
    provideFrameandTrajectory(frame.data(), 1, 2, 3);
    stopOrbitwalkEngine(0, 1, frames.data(), 2, OBW_DIRECTION_BOTTOM2TOP);
    listener.awaitAll();
    expectInOrder(transcript("capture"));
    expectInOrder(transcript("post-processing"));
    for (const auto& line : fake_platform::logLines())
        if (line.text.ends_with("StartTimeChecking")) {
            EXPECT_EQ(line.priority, 6);
        }
}

TEST_F(EngineTest, DeinitAfterAFailedPostProcessingSaysWhatItFrees) {
    fake_writer::setEncodeResult(0);
    beginCapture(2);
    awaitPostProcessing();
    EXPECT_TRUE(tempDirExists());
    resetOrbitwalkEngine();
    deinitOrbitwalkEngine();
    EXPECT_FALSE(tempDirExists());
    cancelOrbitwalkEngine();
    expectInOrder(transcript("deinit-after-failure"));
    expectInOrder(  // Said without the lock.
        {"kelOBWEngine::onOBWEngineDoPostProcess : ResizeFrameProcessor->stop FAILED ",
         "kelOBWEngine::onOBWEngineDoPostProcess : FAILURE CASE : StateLock.unLock DONE "});
}

}  // namespace
