#include "frameproc/RingIndex.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "frameproc/FrameSize.h"

using namespace orbitwalk;

namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

TEST(Ring, GrowsAtTheWritePosition) {
    const struct {
        ring::Positions full;
        ring::Growth growth;
    } cases[] = {
        {{15, 14, 0, 14}, {14, false, {16, 15, 1, 14}}},  // write slot behind the read slot's round
        {{15, 20, 6, 14}, {5, false, {16, 15, 1, 14}}},   // write slot before the read slot
        {{15, 15, 1, 14}, {0, false, {16, 15, 1, 14}}},   // write slot at the ring's beginning
        {{1, 0, 0, 0}, {0, true, {2, 1, 1, 0}}},          // one slot, nothing pending
        {{1, 3, 2, 1}, {0, true, {2, 1, 0, 1}}},          // one slot, and it is pending
    };
    for (const auto& c : cases)
        EXPECT_EQ(ring::growByOne(c.full), c.growth)
            << c.full.length << " slots, write " << c.full.writeCount;
}

TEST(Ring, TakesTheUnsignedRemainder) {
    EXPECT_EQ(ring::slotOf(31, 15), 1u);
    EXPECT_EQ(ring::slotOf(-2, 15), 14u);  // 2^32 - 2 is 15 * 286331152 + 14
}

TEST(Ring, RefusesSizesThatItCannotHold) {
    EXPECT_EQ(ring::totalBytes(16, 15, 10), 240u);
    EXPECT_EQ(ring::totalBytes(kMost, 1, 10), 2147483647u);
    const struct {
        std::int32_t slotBytes, slots;
    } refused[] = {{16, 0}, {16, -1}, {9, 4}, {0, 4}, {-16, 4}, {kMost, 2}, {65536, 32768}};
    for (const auto& c : refused)
        EXPECT_THROW(ring::totalBytes(c.slotBytes, c.slots, 10), std::length_error)
            << c.slotBytes << " x " << c.slots;
}

TEST(FrameSize, IsTwelveBitsAPixelRoundedDown) {
    EXPECT_EQ(yuv420FrameBytes(4, 2), 12);
    EXPECT_EQ(yuv420FrameBytes(3, 3), 13);
    EXPECT_EQ(yuv420FrameBytes(-1, 3), -5);  // an arithmetic shift
    EXPECT_EQ(yuv420FrameBytes(26754, 26754), 1073664774);
    EXPECT_THROW(yuv420FrameBytes(26755, 26755), std::length_error);
    EXPECT_THROW(yuv420FrameBytes(kMost, kMost), std::length_error);
    EXPECT_THROW(yuv420FrameBytes(-kMost, kMost), std::length_error);
}

}  // namespace
