#include "frameproc/OBW_FrameProcessor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <stdexcept>
#include <string>
#include <vector>

#include "frameproc/FrameSize.h"
#include "support/FakeMP4Writer.h"
#include "support/FakePlatform.h"
#include "support/Transcript.h"

namespace {

using Processor = OBW_FrameProcessor;
using testing::ElementsAre;

class FrameProcessor : public testing::Test {
  protected:
    FrameProcessor() {
        fake_writer::reset();
        fake_platform::setBuildType("user");
        fake_platform::clearLog();
    }

    Processor::CreationParams params(int numBuffers = 15) {
        return {4, 2, numBuffers, nullptr, file, dir, nullptr, -1};
    }

    static int send(Processor& processor, unsigned char value) {
        std::vector<unsigned char> frame(12, value);
        return processor.sendFrame(frame.data(), 12);
    }

    static std::vector<std::string> log() {
        return fake_platform::logTexts("ORBITWALK_ENGINE FRAME_PROCESSOR");
    }

    char file[16] = "clip.mp4";
    char dir[16] = "/tmp/work/";
};

TEST_F(FrameProcessor, TakesFramesUpToItsOwnSize) {
    Processor processor(params());
    std::vector<unsigned char> frame(13, 5);
    EXPECT_EQ(processor.sendFrame(frame.data(), 12), 1);
    EXPECT_EQ(processor.sendFrame(frame.data(), 0), 1);
    EXPECT_EQ(processor.sendFrame(frame.data(), 13), 0);
    EXPECT_EQ(processor.sendFrame(frame.data(), -1), 0);
    EXPECT_EQ(fake_platform::countLog("::sendFrame -- frame larger than expected"), 2);
    EXPECT_EQ(processor.sendFrame(nullptr, 12), 0);
    EXPECT_EQ(processor.sendFrame(frame.data(), 12), 1);
    EXPECT_EQ(log().back(), "::sendFrame -- done, frameCount=3");
}

TEST_F(FrameProcessor, RefusesSizesThatDoNotFit) {
    using orbitwalk::yuv420FrameBytes;
    auto bad = params();
    bad.width = -4;
    EXPECT_THROW(Processor{bad}, std::length_error);
    EXPECT_THROW(Processor{params(0)}, std::length_error);
    EXPECT_EQ(yuv420FrameBytes(3, 3), 13);
    EXPECT_EQ(yuv420FrameBytes(-1, 3), -5);  // an arithmetic shift
    EXPECT_EQ(yuv420FrameBytes(26754, 26754), 1073664774);
    EXPECT_THROW(yuv420FrameBytes(26755, 26755), std::length_error);
}

TEST_F(FrameProcessor, EncodesFramesThatWereSentBeforeItsStart) {
    Processor processor(params());
    send(processor, 1);
    unsigned char* slot = processor.getEmptyBuffer();
    slot[0] = 2;
    EXPECT_EQ(processor.unlockEmptyBuffer(), 0);
    EXPECT_EQ(processor.start(), 1);
    send(processor, 3);
    EXPECT_EQ(processor.stop(), 0);
    EXPECT_THAT(fake_writer::firstBytes(), ElementsAre(1, 2, 3));
    EXPECT_EQ(log()[5], "OBW_FrameProcessor::getEmptyBuffer -- done");
}

TEST_F(FrameProcessor, DropsQueuedFramesAtAnAbortAndClosesTheWriter) {
    for (const int result : {1, 0}) {
        fake_writer::reset();
        fake_writer::setEncodeResult(result);
        fake_writer::closeGate();
        Processor processor(params());
        processor.start();
        for (unsigned char i = 0; i < 5; ++i)
            send(processor, i);
        ASSERT_TRUE(fake_writer::waitForEntered(1));
        fake_platform::clearLog();
        auto aborted = std::async(std::launch::async, [&] { return processor.abort(); });
        // The frame at the gate may go once the emergency exit is raised.
        EXPECT_TRUE(fake_platform::waitForLog("::abort -- signalEndOfFrames done"));
        fake_writer::openGate();
        EXPECT_EQ(aborted.get(), result == 1 ? 0 : -1);
        EXPECT_THAT(fake_writer::firstBytes(), ElementsAre(0));
        EXPECT_EQ(fake_writer::record().deinits, 1);
        EXPECT_THAT(
            log(),
            ElementsAre("::abort FRAMEPROC_ALL-- enter", "::abort -- signalEmergencyExit",
                        "::abort -- signalEndOfFrames done", "::abort -- mMP4Encoder stop done",
                        "::abort  FRAMEPROC_ALL-- done"));
    }
}

TEST_F(FrameProcessor, StoppedWithoutStartOrTwiceAnswersZeroAtOnce) {
    Processor processor(params());
    EXPECT_EQ(processor.stop(), 0);
    EXPECT_EQ(processor.abort(), 0);
    EXPECT_EQ(fake_platform::countLog("::stop block -- called without start()"), 1);
    EXPECT_EQ(fake_platform::countLog("::abort -- called without start()"), 1);
    processor.start();
    EXPECT_EQ(processor.stop(), -1);  // no frame
    EXPECT_EQ(processor.stop(), 0);
    EXPECT_EQ(processor.stopAsync(Processor::FRAMEPROC_ALL), 0);
    EXPECT_EQ(fake_writer::record().deinits, 1);
}

TEST_F(FrameProcessor, IsStoppedByItsDestructor) {
    {
        Processor processor(params());
        processor.start();
        send(processor, 1);
    }
    EXPECT_THAT(fake_writer::firstBytes(), ElementsAre(1));
    EXPECT_EQ(fake_writer::record().deinits, 1);
    EXPECT_EQ(fake_platform::countLog("::~OBW_FrameProcessor -- enter : mIsRunning=1"), 1);
    EXPECT_EQ(log().back(), "::~OBW_FrameProcessor -- done");
}

TEST_F(FrameProcessor, LabelsItsLinesByTypeAndProcess) {
    for (const auto& [id, word] :
         {std::pair{0, "MP4_ENC"}, {1, "MOTION"}, {2, "ALL"}, {77, "ALL"}}) {
        const auto process = static_cast<Processor::FRAMEPROC_STOP_PROCESS_ID>(id);
        Processor processor(params());
        EXPECT_EQ(processor.getProgress(process), 0);
        EXPECT_EQ(log().back(), "OBW_FrameProcessor::getProgress procID = " + std::to_string(id));
        processor.start();
        send(processor, 1);
        fake_platform::clearLog();
        EXPECT_EQ(processor.stopAsync(process), 0);
        EXPECT_EQ(log().front(), std::string("::stop async FRAMEPROC_") + word + "-- enter");
        EXPECT_EQ(log().back(), std::string("::stop async  FRAMEPROC_") + word + "-- done");
    }
}

TEST_F(FrameProcessor, LogsARecordingWithPathsOnEngineeringBuildsOnly) {
    for (const std::string build : {"user", "eng"}) {
        fake_platform::setBuildType(build);
        fake_platform::clearLog();
        {
            Processor processor(params());
            processor.start();
            send(processor, 1);
            processor.stop();
            processor.abort();
        }
        test_support::expectTranscript(log(), "frame-processor", build);
    }
}

}  // namespace
