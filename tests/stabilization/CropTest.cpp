#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "stabilization/CropBounds.h"

using namespace orbitwalk;

namespace {

constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();

TEST(CropBounds, NarrowToTheWholePixelsOfTheCorrectedFrame) {
    const FrameSize size{1000, 500};
    const struct {
        Trajectory correction;
        CropBounds expected;
    } cases[] = {
        {{10.9, -4.9, 0}, {10, 1000, 0, 495}},
        {{-10.9, 4.9, 0}, {0, 989, 4, 500}},
        {{-0.9, 0.9, 0}, {0, 999, 0, 500}},
        // A quarter turn takes the corners to (0,0), (-500,0), (0,1000), (-500,1000).
        {{0.5, 0.5, std::numbers::pi / 2}, {0, -499, 1000, 0}},
        {{std::nan(""), 0, 0}, {0, 0, 0, 500}},
        {{1e30, -1e30, 0}, {kHighest, 1000, 0, kLowest}},
    };
    for (const auto& c : cases) {
        const auto bounds = narrowed(wholeFrame(size), frameCorners(size), c.correction);
        EXPECT_EQ(bounds, c.expected) << c.correction.x << ": " << bounds.minX << " " << bounds.maxX
                                      << " " << bounds.minY << " " << bounds.maxY;
    }
}

TEST(CropBounds, KeepEnoughFromTheTruncatedShareOn) {
    const FrameSize size{1920, 1080};  // 76 %: 1459.2 and 820.8
    EXPECT_TRUE(keepsEnough({0, 1459, 0, 820}, size, 0.76));
    EXPECT_FALSE(keepsEnough({0, 1458, 0, 1080}, size, 0.76));
    EXPECT_FALSE(keepsEnough({0, 1920, 0, 819}, size, 0.76));
    EXPECT_FALSE(keepsEnough({50, 50, 0, 1080}, size, 0.0));
    EXPECT_FALSE(keepsEnough({kHighest, kLowest, 0, 1080}, size, 0.76));
    EXPECT_TRUE(keepsEnough({kLowest, kHighest, 0, 1080}, size, 0.76));
}

TEST(AspectFit, TrimsTheLongerSideInProportionToItsMargins) {
    const FrameSize size{1000, 500};
    const struct {
        CropBounds bounds;
        CropBounds expected;
    } cases[] = {
        // 800 wide where 380 high allows 760; margins 50 and 150: a quarter of 40 comes off left.
        {{50, 850, 60, 440}, {60, 820, 60, 440}},
        // 400 high where 760 wide allows 380; margins 25 and 75: a quarter of 20 comes off the top.
        {{100, 860, 25, 425}, {100, 860, 30, 410}},
        // No margin counts as one: 1 and 3, excess 997 - 2 x 496 = 5, edges 1.25 and 993.25.
        {{0, 997, 0, 496}, {1, 993, 0, 496}},
        {{100, 900, 50, 450}, {100, 900, 50, 450}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(fitToAspect(c.bounds, size), c.expected) << c.bounds.minX;
}

TEST(CropSmoothing, PinsThePathWithinTheMargins) {
    // Side 1080, d = max - min; p = max - (1080 - marginHigh), q = marginLow + min.
    const struct {
        CropSmoothingSide side;
        int pin;
        double lost;  // of 1080
    } cases[] = {
        {{10, 30, 0, 1060, 1080}, 10, 20},      // p = 10 inside
        {{10, 30, 0, 1000, 1080}, -50, 80},     // p = -50, 60 below min
        {{-30, -10, 20, 1080, 1080}, -10, 20},  // q = -10 inside
        {{-30, -10, 50, 1080, 1080}, 20, 50},   // q = 20, 30 above max
        {{-10, 20, 15, 1065, 1080}, 5, 30},     // p = q = 5
        {{-10, 20, 14, 1070, 1080}, 7, 30},     // (4 x 10 + 10 x 14) / 24 = 7.5
        {{-10, 20, 60, 1120, 1080}, 56, 66},    // (50 x 40 + 60 x 60) / 100, 36 above max
        {{-10, 20, -30, 1030, 1080}, -36, 56},  // (-40 x 50 - 30 x 30) / 80 = -36.25, 26 below
        {{0, 0, 0, 1080, 1080}, 0, 0},
    };
    for (const auto& c : cases) {
        const auto pin = pinToMargins(c.side);
        EXPECT_EQ(pin.value, c.pin) << "case " << &c - cases;
        EXPECT_NEAR(pin.ratio, 1 - c.lost / 1080, 1e-15) << "case " << &c - cases;
    }
}

}  // namespace
