#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <vector>

#include "frameproc/InjectedFaults.h"
#include "frameproc/OBW_FrameProcessor.h"
#include "frameproc/OBW_MP4EncoderProcess.h"
#include "support/Complaint.h"
#include "support/FakeMP4Writer.h"
#include "support/FakePlatform.h"

namespace {

using Queue = SPMCQueue<unsigned char>;
using test_support::complaintOf;
using testing::SizeIs;

constexpr int kSlot = 6144;  // of 64x64 frames: a size that nothing else allocates

class Faults : public testing::Test {
  protected:
    Faults() {
        fake_writer::reset();
        fake_platform::clearLog();
    }
    ~Faults() override { injected_faults::failArrayAllocationsOf(0); }

    OBW_FrameProcessor::CreationParams params(int numBuffers) {
        return {64, 64, numBuffers, nullptr, file, dir, nullptr, -1};
    }

    int send(OBW_FrameProcessor& processor, unsigned char value) {
        frame.assign(kSlot, value);
        return processor.sendFrame(frame.data(), kSlot);
    }

    std::vector<unsigned char> frame;
    char file[16] = "clip.mp4";
    char dir[16] = "/tmp/work/";
};

TEST_F(Faults, QueueFreesItsSlotsButNotTheCallersPool) {
    std::vector<unsigned char> pool(2 * kSlot);
    for (unsigned char* const given : {pool.data(), static_cast<unsigned char*>(nullptr)}) {
        const int before = injected_faults::liveArrays();
        {
            Queue queue(kSlot, 2, given);
            for (int i = 0; i < 20; ++i) {
                std::memset(queue.writeLock(), i, kSlot);
                queue.writeUnlock();
            }
            EXPECT_EQ(injected_faults::liveArrays() - before, given != nullptr ? 19 : 20);
        }
        EXPECT_EQ(injected_faults::liveArrays(), before);
    }
}

TEST_F(Faults, QueueWithoutASemaphoreLeavesNothingBehind) {
    std::vector<unsigned char> pool(2 * kSlot);
    const int before = injected_faults::liveArrays();
    injected_faults::failSemaphoreInit(true);
    for (unsigned char* const given : {pool.data(), static_cast<unsigned char*>(nullptr)})
        EXPECT_EQ(complaintOf<std::runtime_error>([&] { Queue(kSlot, 2, given); }),
                  "SPMCQueue: failed to init semaphore");
    injected_faults::failSemaphoreInit(false);
    EXPECT_EQ(injected_faults::liveArrays(), before);
}

TEST_F(Faults, QueueIsUnchangedWhenItCannotGrow) {
    Queue queue(kSlot, 3);
    for (int i = 0; i < 2; ++i) {
        std::memset(queue.writeLock(), i, kSlot);
        queue.writeUnlock();
    }
    injected_faults::failArrayAllocationsOf(kSlot);
    EXPECT_THROW(queue.writeLock(), std::bad_alloc);
    EXPECT_EQ(*queue.readLock(), 0);
    queue.readUnlock();
    std::memset(queue.writeLock(), 2, kSlot);  // the slot that has been free all along
    queue.writeUnlock();
    injected_faults::failArrayAllocationsOf(0);
    queue.signalEndOfFrames();
    for (const int expected : {1, 2}) {
        EXPECT_EQ(*queue.readLock(), expected);
        queue.readUnlock();
    }
    EXPECT_EQ(queue.readLock(), nullptr);
}

TEST_F(Faults, ProcessorWithoutAThreadFailsItsStopAndCanBeDestroyed) {
    for (const bool stopFirst : {true, false}) {
        OBW_FrameProcessor processor(params(15));
        {
            const injected_faults::NoThreads noThreads;
            EXPECT_THROW(processor.start(), std::system_error);
        }
        EXPECT_EQ(send(processor, 1), 1);
        if (stopFirst) {
            EXPECT_EQ(processor.stop(), -1);
        }
    }
    EXPECT_TRUE(fake_writer::record().frames.empty());
    EXPECT_EQ(fake_writer::record().deinits, 0);
}

TEST_F(Faults, ProcessorClosesTheWriterWhenTheEndMarkerDoesNotFit) {
    for (const bool stopFirst : {true, false}) {
        fake_writer::reset();
        fake_writer::closeGate();
        auto processor = std::make_unique<OBW_FrameProcessor>(params(2));
        processor->start();
        send(*processor, 1);
        ASSERT_TRUE(fake_writer::waitForEntered(1));
        injected_faults::failArrayAllocationsOf(kSlot);
        EXPECT_THROW(send(*processor, 2), std::bad_alloc);
        std::thread stalledWriter([] {
            EXPECT_TRUE(fake_platform::waitForLog("OBW_MP4EncoderProcess::stop -- enter"));
            fake_writer::openGate();
        });
        if (stopFirst) {
            EXPECT_THROW(processor->stop(), std::bad_alloc);
        }
        processor.reset();
        stalledWriter.join();
        injected_faults::failArrayAllocationsOf(0);
        EXPECT_THAT(fake_writer::record().frames, SizeIs(1));
        EXPECT_EQ(fake_writer::record().deinits, 1);
        fake_platform::clearLog();
    }
}

TEST_F(Faults, EmptyRecordingIsClosedWithoutMemoryForTheFiller) {
    OBW_FrameProcessor processor(params(2));
    processor.start();
    injected_faults::failArrayAllocationsOf(kSlot);
    EXPECT_EQ(processor.stop(), -1);
    EXPECT_TRUE(fake_writer::record().frames.empty());
    EXPECT_EQ(fake_writer::record().deinits, 1);
}

}  // namespace
