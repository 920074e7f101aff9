#include "engine/SweepSelection.h"

#include <gtest/gtest.h>

#include "engine/StartParameters.h"

namespace {

using namespace orbitwalk;

/// Frame i stands at (10 + i, 20 - i, i / 8), exactly representable.
SweepSelection select(const std::vector<int>& flags, int first, int last) {
    std::vector<_ENCODING_FRAME_INFORMATION> frames;
    for (const int flag : flags) {
        const auto i = static_cast<float>(frames.size());
        frames.push_back({10 + i, 20 - i, i / 8, flag, 0, 0});
    }
    return selectSweep(frames, first, last);
}

TEST(SweepSelection, MeasuresEverySelectedFrameAgainstTheFirstSelectedOne) {
    const SweepTransform one{1, {1, -1, 0.125}}, two{2, {2, -2, 0.25}}, three{3, {3, -3, 0.375}};
    const SweepTransform secondOfRange{2, {1, -1, 0.125}}, thirdOfRange{3, {2, -2, 0.25}};
    const struct {
        const char* name;
        std::vector<int> flags;
        int first, last;
        SweepSelection expected;
    } cases[] = {
        {"all", {1, 1, 1, 1}, 0, 3, {0, {one, two, three}}},
        {"range", {1, 1, 1, 1, 1}, 1, 3, {1, {secondOfRange, thirdOfRange}}},
        {"flags", {1, 0, 1, -1}, 0, 3, {0, {two}}},
        {"only 1 renders", {2, 1, 3, 1}, 0, 3, {1, {{3, {2, -2, 0.25}}}}},
        {"start below 0", {1, 1}, -1, 1, {0, {one}}},
        {"end beyond", {1, 1}, 0, 99, {0, {one}}},
        {"one frame", {0, 1, 0}, 0, 2, {1, {}}},
        {"no frame", {0, 0}, 0, 1, {-1, {}}},
        {"empty range", {1, 1}, 1, 0, {-1, {}}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(select(c.flags, c.first, c.last), c.expected) << c.name;
}

TEST(SweepSelection, SubtractsInDoublePrecision) {
    const _ENCODING_FRAME_INFORMATION frames[] = {{0.1f, 0, 0, 1, 0, 0},
                                                  {16777216.0f, 0, 0, 1, 0, 0}};
    EXPECT_EQ(selectSweep(frames, 0, 1).transforms[0].fromReference.x,
              16777216.0 - static_cast<double>(0.1f));
}

TEST(StartParameters, AcceptOnlySizesThatThePipelineCanCarry) {
    const struct {
        int width, height;
        bool usable;
    } cases[] = {
        {4, 4, true},          {3, 4, false},
        {4, 3, false},         {0, 0, false},
        {-64, -48, false},     {32767, 4, true},
        {32768, 4, false},     {4, 32768, false},
        {1920, 1080, true},    {9768, 9768, true},  // 15 slots of 143120736 bytes
        {9770, 9770, false},                        // 15 slots of 143179350 bytes: past 2147483647
        {32767, 32767, false}, {2147483647, 2147483647, false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(isUsableFrameSize(c.width, c.height), c.usable) << c.width << 'x' << c.height;
}

}  // namespace
