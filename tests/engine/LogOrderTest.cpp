#include "engine/EngineFixture.h"

namespace {

const std::string kVersion =
    "Capture Engine Version = OBW_ENGINE_V_0.31_20_06_2016, date = Jun 20 2016, time 18:20:57";

// One thread's lines, those of the post-processing thread, and the ends that are not a stop.

TEST_F(EngineTest, ACaptureSaysItsStepsInOrder) {
    param.orientation = 90;
    auto frames = framesWithFlags({1, 1});
    initOrbitwalkEngine(&listener);
    startOrbitwalkEngine(&param);
    provideFrameandTrajectory(frame.data(), 1, 2, 3);
    stopOrbitwalkEngine(0, 1, frames.data(), 2, OBW_DIRECTION_BOTTOM2TOP);
    listener.awaitAll();
    expectInOrder({
        "kelOBWEngine::init -- called, " + kVersion,
        "startOrbitwalkEngine : E",
        "startOrbitwalkEngine : Init Param. image width = 64\timage height = 48\torientation = 90",
        "kelOBWEngine::start -- called, " + kVersion,
        "kelOBWEngine::start-- max frames = 1000, engineState=9",
        "kelOBWEngine::start lock engineState=9, numCapture=0",
        "kelOBWEngine::start OBW IMAGE RESOLUTION = [64 X 48]",
        "kelOBWEngine::start : imageWidth:64, imageHeight:48, imageFormat:17",
        "kelOBWEngine::start :  WR metadata buffer size = 52808",
        "kelOBWEngine::start unlock done",
        "kelOBWEngine::start Setting Parameters in Start DONE",
        "kelOBWEngine::start lock done, engineState=4, numCapture=0",
        "kelOBWEngine::start :  Orientation changed from 90 to 270 ",
        "kelOBWEngine::start :  Orientation = 270 FrontCamFlipped = 0 ",
        "kelOBWEngine::removeTempDir : rm Dir OK : Line: 280",
        "kelOBWEngine::start  : create directory [Line: 476] SUCCESS StartTimeChecking",
        "kelOBWEngine::start Creating  OBW_FrameProcessor with WxH = 64x48 ",
        "Time Elapsed : ",
        "::start-- enter",
        "kelOBWEngine::start create stabilizer",
        "kelOBWEngine::start create stabilizer and initialize done, stat=0",
        "kelOBWEngine::start create FindTransform",
        "kelOBWEngine::start create FindTransform and initialize done, status=0",
        "kelOBWEngine::start done unlock done, engineState=9",
        "startOrbitwalkEngine : X",
        "provideFrameandTrajectory : E",
        "kelOBWEngine::setFrameInfo -- called, " + kVersion,
        "kelOBWEngine::setFrameInfo : stateLock-lock : totalNumFrames=0, engineState=9, "
        "cancelCmdReceived=0",
        "kelOBWEngine::setFrameInfo : Trajectory : 1.000000, 2.000000, 3.000000",
        "kelOBWEngine::setFrameInfo lock done engineState=3",
        "kelOBWEngine::setFrameInfo : input res : 64X48, WR res : 64X48, total frames = 0, max "
        "frames=1000",
        "::sendFrame -- enter, size = 4608",
        "kelOBWEngine::setFrameInfo : stateLock-unlock done:engineState=9, totalNumFrames=1",
        "provideFrameandTrajectory : X",
        "stopOrbitwalkEngine : E",
        "kelOBWEngine::stop STOP_NON_BLOCKING -- called, " + kVersion,
        "kelOBWEngine::stop ERROR! Invalid capture direction [4], set default as LEFT2RIGHT \n",
        "kelOBWEngine::stop : frame render = 1, Trajectory : 0.000000, 0.000000, 0.000000",
        "kelOBWEngine::stop save first valid frame trajectory = ",
        "kelOBWEngine::stop sendTransformationMatrix done : stat = 1, ",
        "insertTransformInfoInOBWMetaData : store dx =0.000000, 0, orientation=0, "
        "cameraDirection=1",
        "kelOBWEngine::stop select frame : frame num = 1",
    });
    expectInOrder({
        "kelOBWEngine::onOBWEngineDoPostProcess -- Enter : numCapture=1, totalNumFrames = 1",
        "kelOBWEngine::onOBWEngineDoPostProcess : Mp4EncStatus = 0 ",
        "kelOBWEngine::doSmoothingAndFillMetadata -- doStabilization done : stat = 0",
        "kelOBWEngine::doSmoothingAndFillMetadata : StartIndx = 0 EndIndx = 1 NumFrames = 2 ",
        "kelOBWEngine::doSmoothingAndFillMetadata -- getStabilizationInfo done : stat = 0",
        "printOBWMetaInfo : w:h = 64x48",
        "kelOBWEngine::doSmoothingAndFillMetadata -- send WR metadata, size = 52808, 52808",
        "kelOBWEngine::onOBWEngineDoPostProcess : doSmoothingAndFillMetadata DONE ",
        "kelOBWEngine::onOBWEngineDoPostProcess : p_mFindTransform Destroy DONE ",
        "kelWideReelEngine::onWREngineDoPostProcess : call removeTempDir",
        "kelOBWEngine : onWREngineDoPostProcess: removeTempDir SUCCESS",
        "kelOBWEngine::onOBWEngineDoPostProcess : stateLock-unlock DONE",
    });
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
    expectInOrder({
        "kelOBWEngine::onOBWEngineDoPostProcess : ResizeFrameProcessor->stop FAILED ",
        "kelOBWEngine::reset -- called, " + kVersion,
        "kelOBWEngine::deinit -- called, " + kVersion,
        "kelOBWEngine::memCleanupForCancel ENTER",
        "kelOBWEngine::cancel frameProcessor is NULL",
        "kelOBWEngine::memCleanupForCancel : free memory pOBWKDXMetaInfo",
        "kelOBWEngine::memCleanupForCancel : p_mFindTransform Release DONE ",
        "kelOBWEngine::memCleanupForCancel : p_mFindTransform Destroy DONE ",
        "kelOBWEngine::memCleanupForCancel : p_mVideoStabilizer Release DONE ",
        "kelOBWEngine::memCleanupForCancel : p_mVideoStabilizer Destroy DONE ",
        "kelOBWEngine : memCleanupForCancel : removeTempDir SUCCESS",
        "kelOBWEngine::memCleanupForCancel DONE",
        "kelOBWEngine : deinit : removeTempDir SUCCESS",
        "kelOBWEngine::deinit unlock, engineState=8",
        "kelOBWEngine::ResetInstance -- done",
        "kelOBWEngine::cancel -- called, blocking call, " + kVersion,
    });
    expectInOrder(  // Said without the lock.
        {"kelOBWEngine::onOBWEngineDoPostProcess : ResizeFrameProcessor->stop FAILED ",
         "kelOBWEngine::onOBWEngineDoPostProcess : FAILURE CASE : StateLock.unLock DONE "});
}

}  // namespace
