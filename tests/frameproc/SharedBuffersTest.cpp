#include "orbitwalk/SharedBuffers.h"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

TEST(SharedMemory, SetsTheFlagOppositeToTheUnlocksNames) {
    CSharedMemory slot(0);
    EXPECT_TRUE(slot.lockForWriting());
    EXPECT_FALSE(slot.lockForReading());
    slot.unlockForReading();
    EXPECT_FALSE(slot.lockForWriting());
    EXPECT_TRUE(slot.lockForReading());
    slot.unlockForWriting();
    EXPECT_TRUE(slot.lockForWriting());
    EXPECT_FALSE(slot.lockForReading());
}

TEST(SharedMemory, WaitsEachSideItsOwnLimit) {
    CSharedMemory slot(30, 0);
    const auto begin = Clock::now();
    EXPECT_FALSE(slot.lockForReading());
    EXPECT_GE(Clock::now() - begin, milliseconds(30));
    CSharedBufferQueue queue(16, 2, 40);
    EXPECT_EQ(queue.lockForReading(), 0);
    EXPECT_GE(Clock::now() - begin, milliseconds(30 + 40));
}

TEST(SharedMemory, WakesTheSideThatWaitsForTheFlag) {
    CSharedMemory slot(600000);  // an alarm: a wake-up that is lost lets the test time out
    std::thread reader([&] {
        EXPECT_TRUE(slot.lockForReading());
        slot.unlockForWriting();
    });
    slot.unlockForReading();
    EXPECT_TRUE(slot.lockForWriting());
    reader.join();
}

TEST(SharedBufferQueue, HandsOutBufferOneFirst) {
    CSharedBufferQueue queue(100, 3);
    EXPECT_EQ(queue.size(), 100);
    const auto one = queue.lockForWriting();
    const auto two = queue.lockForWriting();
    const auto zero = queue.lockForWriting();
    ASSERT_NE(one, 0);
    EXPECT_EQ(two - one, 100);
    EXPECT_EQ(one - zero, 100);
    EXPECT_EQ(queue.lockForWriting(), one);
}

TEST(SharedBufferQueue, TimesOutWithZeroAndKeepsItsTurn) {
    CSharedBufferQueue queue(16, 2);
    const auto begin = Clock::now();
    EXPECT_EQ(queue.lockForReading(), 0);
    EXPECT_GE(Clock::now() - begin, milliseconds(8));

    // Filling is the reader's unlock, at the slot last locked for reading: number 0 at first.
    queue.unlockForReading();
    EXPECT_EQ(queue.lockForReading(), 0);
    const auto one = queue.lockForWriting();
    EXPECT_EQ(queue.lockForWriting(), 0);  // number 0 is full
    queue.unlockForWriting();              // empties number 1, which it was already
    EXPECT_EQ(queue.lockForWriting(), 0);
    EXPECT_NE(one, 0);
}

TEST(SharedBufferQueue, OfOneBufferKeepsHandingItOut) {
    CSharedBufferQueue queue(1, 1, 0);
    const auto buffer = queue.lockForWriting();
    EXPECT_NE(buffer, 0);
    EXPECT_EQ(queue.lockForWriting(), buffer);
    queue.unlockForReading();
    EXPECT_EQ(queue.lockForReading(), buffer);
}

TEST(SharedBufferQueue, RefusesSizesBelowOne) {
    EXPECT_THROW(CSharedBufferQueue(0, 1), std::invalid_argument);
    EXPECT_THROW(CSharedBufferQueue(1, 0), std::invalid_argument);
    EXPECT_THROW(CSharedBufferQueue(-5, 2, 8), std::invalid_argument);
    EXPECT_THROW(CSharedBufferQueue(5, -2, 8), std::invalid_argument);
}

}  // namespace
