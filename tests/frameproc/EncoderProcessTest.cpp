#include "frameproc/OBW_MP4EncoderProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "support/FakeMP4Writer.h"
#include "support/FakePlatform.h"
#include "support/Transcript.h"

namespace {

using testing::ElementsAre;

constexpr char kWorkerTag[] = "ORBITWALK_ENGINE MP4_ENC_PROCESS";

/// A queue of eight 4x2 frames and its worker.
class EncoderProcess : public testing::Test {
  protected:
    EncoderProcess() {
        fake_writer::reset();
        fake_platform::clearLog();
        fake_platform::setBuildType("user");
    }

    static void send(SPMCQueue<unsigned char>& ring, int value) {
        std::memset(ring.writeLock(), value, 12);
        ring.writeUnlock();
    }

    char file[16] = "clip.mp4";
    std::string dir = "/tmp/work/";
    SPMCQueue<unsigned char> queue{16, 8};
};

TEST_F(EncoderProcess, OpensTheWriterWithItsElevenArgumentsAndAPathCutAt255Characters) {
    dir = std::string(251, 'd');
    OBW_MP4EncoderProcess worker(4, 2, queue, file, dir.data(), stderr, -1);
    send(queue, 1);
    queue.signalEndOfFrames();
    worker.start();
    EXPECT_EQ(worker.stop(), 0);
    const auto record = fake_writer::record();
    ASSERT_EQ(record.inits.size(), 1u);
    const fake_writer::InitCall& init = record.inits[0];
    EXPECT_TRUE(init.fileNameIsNull);
    EXPECT_EQ(init.tempDir, dir + "RW_L");
    EXPECT_THAT((std::vector{init.width, init.height, init.setting5, init.bitRate, init.setting7,
                             init.setting8, init.setting9, init.fileId}),
                ElementsAre(4, 2, 0, 16777216, 15, 30, 7, -1));
    EXPECT_EQ(init.file, stderr);
}

TEST_F(EncoderProcess, DrainsTheQueueAfterItsLoopWasStopped) {
    OBW_MP4EncoderProcess worker(4, 2, queue, file, dir.data(), nullptr, -1);
    fake_writer::closeGate();
    for (int i = 1; i <= 5; ++i)
        send(queue, i);
    worker.start();
    ASSERT_TRUE(fake_writer::waitForEntered(1));
    worker.requestStop();
    fake_writer::openGate();
    queue.signalEndOfFrames();
    worker.join();
    EXPECT_EQ(fake_platform::countLog("OBW_MP4EncoderProcess::onStop -- enter, "
                                      "mRecvFrameCount = 1, mIsAllFramesDone = 0"),
              1);
    EXPECT_THAT(fake_writer::firstBytes(), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_EQ(worker.stop(), 0);
    EXPECT_EQ(fake_writer::record().deinits, 1);
}

TEST_F(EncoderProcess, ReportsHowTheWriterOpenedAndTheLastEncodeAlone) {
    const std::string failedEncode =
        "mp4EncoderProcess::stop -- mp4 Encode has failed, mp4InitState = 1, mMp4RetStatus=0";
    const std::string failedInit =
        "mp4EncoderProcess::stop -- mp4 init has failed, do not do "
        "deinit, mp4InitState = 0, mp4EncodeState=1";
    const struct {
        int initResult, frames, failingFrame, result;
        std::vector<int> encoded;
        int deinits;
        std::string lastLine;
    } cases[] = {
        {1, 3, -1, 0, {1, 2, 3}, 1, ""},
        {1, 3, 1, 0, {1, 2, 3}, 1, ""},
        {1, 3, 2, -1, {1, 2, 3}, 1, failedEncode},
        {1, 0, -1, -1, {0}, 1, failedEncode},  // one black frame
        {0, 2, -1, -1, {1, 2}, 0, failedInit},
    };
    const fake_platform::LogLine initFailed{
        6, kWorkerTag, "OBW_MP4EncoderProcess::onStart --: InitMP4Engine FAILED : retVal=0"};
    for (const auto& c : cases) {
        fake_writer::reset();
        fake_platform::clearLog();
        fake_writer::setInitResult(c.initResult);
        fake_writer::setEncodeResultOf(c.failingFrame, 0);
        SPMCQueue<unsigned char> ring(16, 8);
        OBW_MP4EncoderProcess worker(4, 2, ring, file, dir.data(), nullptr, -1);
        worker.start();
        for (int i = 1; i <= c.frames; ++i)
            send(ring, i);
        ring.signalEndOfFrames();
        EXPECT_EQ(worker.stop(), c.result);
        EXPECT_EQ(fake_writer::firstBytes(), c.encoded);
        EXPECT_EQ(fake_writer::record().deinits, c.deinits);
        EXPECT_EQ(fake_writer::record().misuses, 0);
        if (!c.lastLine.empty()) {
            EXPECT_EQ(fake_platform::logTexts(kWorkerTag).back(), c.lastLine);
        }
        const auto lines = fake_platform::logLines();
        EXPECT_EQ(std::count(lines.begin(), lines.end(), initFailed), c.initResult == 1 ? 0 : 2);
    }
}

// Of one frame; the worker meets the end marker in its run loop.
TEST_F(EncoderProcess, LogsARecordingWithPathsOnEngineeringBuildsOnly) {
    for (const std::string build : {"user", "eng"}) {
        SPMCQueue<unsigned char> ring(16, 8);
        const auto frame = testing::PrintToString(static_cast<void*>(ring.writeLock()));
        fake_platform::setBuildType(build);
        fake_platform::clearLog();
        OBW_MP4EncoderProcess worker(4, 2, ring, file, dir.data(), nullptr, -1);
        send(ring, 1);
        ring.signalEndOfFrames();
        worker.start();
        worker.join();
        worker.stop();
        EXPECT_EQ(fake_platform::countLog("OBW_MP4EncoderProcess::onRun -- got buffer = " + frame),
                  1);
        test_support::expectTranscript(fake_platform::logTexts(kWorkerTag), "encoder", build);
    }
    std::vector<std::string> timingTags;
    for (const auto& line : fake_platform::logLines())
        if (line.priority == 2)
            timingTags.push_back(line.tag);
    EXPECT_THAT(timingTags,
                ElementsAre("OBW_MP4EncoderProcess::onStart -- InitMP4Engine done : "
                            "MP4EncInit_acc",
                            "OBW_MP4EncoderProcess::onRun -- EncodeFrame done : MP4Time_acc",
                            "OBW_MP4EncoderProcess::stop : WR_PP_ACC MP4_PROC_PP_Time_acc_2"));
}

}  // namespace
