#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "frameproc/SPMCQueue.h"
#include "support/FakePlatform.h"

namespace {

using Queue = SPMCQueue<unsigned char>;
using testing::ElementsAre;

constexpr int kSlot = 16;

void put(Queue& queue, int number) {
    std::memcpy(queue.writeLock(), &number, sizeof number);
    queue.writeUnlock();
}

int numberIn(const unsigned char* slot) {
    int number;
    std::memcpy(&number, slot, sizeof number);
    return number;
}

/// Numbers up to the marker.
std::vector<int> drain(Queue& queue) {
    std::vector<int> numbers;
    while (const unsigned char* slot = queue.readLock()) {
        numbers.push_back(numberIn(slot));
        queue.readUnlock();
    }
    return numbers;
}

std::vector<int> numbersTo(int count) {
    std::vector<int> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

using testing::PrintToString;

TEST(Queue, GrowsByANewSlotWhenTheConsumerStalls) {
    fake_platform::clearLog();
    std::vector<unsigned char> pool(15 * kSlot);
    Queue queue(kSlot, 15, pool.data());
    for (int i = 0; i < 14; ++i) {
        ASSERT_EQ(queue.writeLock(), pool.data() + i * kSlot);
        put(queue, i);
    }
    EXPECT_EQ(fake_platform::countLogPrefix("SPMCQueue resizing"), 0);
    const unsigned char* fifteenth = queue.writeLock();
    EXPECT_TRUE(fifteenth < pool.data() || fifteenth >= pool.data() + pool.size());
    EXPECT_EQ(fake_platform::countLog("SPMCQueue resizing from 15 length"), 1);
    EXPECT_EQ(queue.writeLock(), fifteenth);
    put(queue, 14);
    queue.signalEndOfFrames();
    EXPECT_EQ(drain(queue), numbersTo(15));
}

TEST(Queue, NeverHandsOutTheSlotThatIsBeingRead) {
    for (const int length : {1, 2, 3, 7}) {
        for (int readFirst = 0; readFirst < 2 * length; ++readFirst) {
            Queue queue(kSlot, length);
            for (int i = 0; i < readFirst; ++i) {
                put(queue, -1);
                ASSERT_EQ(numberIn(queue.readLock()), -1);
                queue.readUnlock();
            }
            put(queue, 0);
            const unsigned char* reading = queue.readLock();
            for (int i = 1; i < 20; ++i) {
                ASSERT_NE(queue.writeLock(), reading);
                put(queue, i);
            }
            EXPECT_EQ(numberIn(reading), 0);
            queue.readUnlock();
            queue.signalEndOfFrames();
            auto rest = numbersTo(20);
            rest.erase(rest.begin());
            EXPECT_EQ(drain(queue), rest) << length << " slots, " << readFirst << " read before";
        }
    }
}

TEST(Queue, OfOneSlotGrowsAtTheFirstWrite) {
    fake_platform::clearLog();
    Queue queue(kSlot, 1);
    put(queue, 7);
    EXPECT_EQ(fake_platform::countLog("SPMCQueue resizing from 1 length"), 1);
    EXPECT_EQ(fake_platform::countLog("SPMCQueue adjusting corner case tail for 0"), 1);
    queue.signalEndOfFrames();
    EXPECT_THAT(drain(queue), ElementsAre(7));
}

TEST(Queue, RefusesSizesThatItCannotHold) {
    constexpr int most = std::numeric_limits<int>::max();
    for (const auto& [slotBytes, slots] :
         {std::pair{16, 0}, {16, -1}, {9, 4}, {0, 4}, {-16, 4}, {most, 2}, {65536, 32768}})
        EXPECT_THROW(Queue(slotBytes, slots), std::length_error) << slotBytes << " x " << slots;
}

TEST(Queue, EndsAtAFrameThatReadsAsTheMarkerOnly) {
    Queue queue(kSlot, 4);
    std::strcpy(reinterpret_cast<char*>(queue.writeLock()), "terminated");
    queue.writeUnlock();
    std::strcpy(reinterpret_cast<char*>(queue.writeLock()), "terminate");
    queue.writeUnlock();
    EXPECT_NE(queue.readLock(), nullptr);
    queue.readUnlock();
    EXPECT_EQ(queue.readLock(), nullptr);
}

TEST(Queue, LeavesPendingFramesAtAnEmergencyExit) {
    Queue queue(kSlot, 8);
    for (int i = 0; i < 3; ++i)
        put(queue, i);
    EXPECT_EQ(numberIn(queue.readLock()), 0);
    queue.readUnlock();
    queue.signalEmergencyExit();
    queue.signalEndOfFrames();
    EXPECT_EQ(queue.readLock(), nullptr);
}

TEST(Queue, LogsTheLeastHeadRoomSinceTheLastGrowth) {
    constexpr int unused = 2147483647;
    const struct {
        int writes, headRoom, length;
    } cases[] = {{0, unused, 4}, {1, 4, 4}, {3, 2, 4}, {4, unused, 5}, {5, unused, 6}};
    for (const auto& c : cases) {
        fake_platform::clearLog();
        {
            Queue queue(kSlot, 4);
            for (int i = 0; i < c.writes; ++i)
                put(queue, i);
        }
        EXPECT_EQ(fake_platform::logTexts("WR_SPMCQueue").back(),
                  "SPMCQueue head-room " + std::to_string(c.headRoom) + " for " +
                      std::to_string(c.length) + " length");
    }
}

TEST(Queue, LogsItsLifeWithACallersPool) {
    fake_platform::clearLog();
    std::array<unsigned char, 2 * kSlot> pool;
    std::string grown;
    {
        Queue queue(kSlot, 2, pool.data());
        put(queue, 0);
        grown = PrintToString(static_cast<void*>(queue.writeLock()));
        queue.signalEndOfFrames();
    }
    const std::string address = PrintToString(static_cast<void*>(pool.data()));
    EXPECT_THAT(
        fake_platform::logTexts("WR_SPMCQueue"),
        ElementsAre(
            "SPMCQueue buffer alloc : totalSize=32, mFrameSize=16, mNumFrames=2",
            "SPMCQueue use input buffer pool =" + address, "SPMCQueue resizing from 2 length",
            "SPMCQueue new buffer = " + grown + " ", "SPMCQueue signalling end of frames",
            "SPMCQueue : ~~SPMCQueue - usingInputBufferPool=1 pInputBufferPool = " + address +
                ", total buffers = 2",
            "SPMCQueue : ~~SPMCQueue -  using Buffer Pool : don not free first "
            "buffer",
            "SPMCQueue : ~~SPMCQueue - free buffers",
            "SPMCQueue : ~~SPMCQueue - free buffer = " + grown,
            "SPMCQueue head-room 2 for 3 length"));  // the marker was written with one frame
                                                     // pending
    for (const auto& line : fake_platform::logLines())
        EXPECT_EQ(line.priority, 4);
}

TEST(Queue, ZeroesABlockOfItsOwn) {
    fake_platform::clearLog();
    Queue queue(kSlot, 3);
    unsigned char* block = queue.writeLock();
    EXPECT_EQ(std::count(block, block + 3 * kSlot, 0), 3 * kSlot);
    EXPECT_THAT(fake_platform::logTexts("WR_SPMCQueue"),
                ElementsAre("SPMCQueue buffer alloc : totalSize=48, mFrameSize=16, mNumFrames=3",
                            "SPMCQueue buffer - done memset",
                            "SPMCQueue buffer alloc done : buf=" +
                                PrintToString(static_cast<void*>(block))));
}

TEST(Queue, KeepsTheOrderBetweenTwoThreads) {
    constexpr int count = 20000;
    Queue queue(kSlot, 2);
    std::vector<int> received;
    std::thread consumer([&] { received = drain(queue); });
    for (int i = 0; i < count; ++i)
        put(queue, i);
    queue.signalEndOfFrames();
    consumer.join();
    EXPECT_EQ(received, numbersTo(count));
}

}  // namespace
