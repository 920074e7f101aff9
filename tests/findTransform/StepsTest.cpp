#include "findTransform/2D/TrackFilter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "findTransform/2D/LumaReduction.h"
#include "findTransform/2D/c2DCalculateTransform.h"

namespace {

using orbitwalk::Points;

std::vector<float> repeated(std::initializer_list<std::pair<int, float>> groups) {
    std::vector<float> values;
    for (const auto& [count, value] : groups)
        values.insert(values.end(), count, value);
    return values;
}

TEST(OtsuThreshold, GivesTheSplitsWorkedOutByHand) {
    const struct {
        const char* what;
        std::vector<float> values;
        float threshold;
    } cases[] = {
        {"no values", {}, 0},
        {"all at 0", repeated({{5, 0}}), 0},
        {"all in one bin: no bin has values on both sides", repeated({{5, 7}}), 0},
        {"bins 0 to 99 split alike: their middle", repeated({{3, 0}, {2, 100}}), 49.5f},
        {"neighbouring bins", repeated({{10, 19}, {10, 20}}), 19},
        // Products of weights and squared distance of means: bin 0: 1*3*(0-8/3)^2 = 21.3, bin 1:
        // 2*2*(0.5-3.5)^2 = 36, bin 2 the same, bin 3: 3*1*(4/3-4)^2 = 21.3.
        {"a gap between two pairs", {0, 1, 3, 4}, 1.5f},
        // Bins 0 and 1: 1*2*(0-3)^2 = 18, bins 2 and 3: 2*1*(1-4)^2 = 18.
        {"a plateau over an occupied bin", {0, 2, 4}, 1.5f},
        {"a single value at 0 below many", repeated({{1, 0}, {19, 30}}), 14.5f},
    };
    for (const auto& c : cases)
        EXPECT_EQ(orbitwalk::otsuThreshold(c.values), c.threshold) << c.what;
}

TEST(TrackFilter, DropsLostTracksAndThoseOfFiftyPixels) {
    Points from(5), origins = {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}};
    Points to = {{30, 40}, {29.9f, 40}, {0, 0}, {std::nanf(""), 0}, {0, 49.99f}};
    Points from2 = from, to2 = to;
    const unsigned char status[] = {1, 1, 0, 1, 1};
    orbitwalk::dropLostTracks(status, from, to);
    EXPECT_EQ(from.size(), 2u);
    EXPECT_EQ(to, (Points{{29.9f, 40}, {0, 49.99f}}));
    orbitwalk::dropLostTracks(status, from2, to2, origins);
    EXPECT_EQ(to2, to);
    EXPECT_EQ(origins, (Points{{1, 0}, {4, 0}}));
}

TEST(TrackFilter, LosesTracksThatEndAWindowOutsideOfThePicture) {
    // The window of 21 about (x, y) begins at (x - 10, y - 10).
    const Points ends = {{-11, 0},    {-11.1f, 0}, {109.9f, 0}, {110, 0},          {0, -11},
                         {0, -11.1f}, {0, 59.9f},  {0, 60},     {std::nanf(""), 0}};
    std::vector<unsigned char> status(ends.size(), 1);
    orbitwalk::loseTracksOutside({100, 50}, 21, ends, status);
    EXPECT_EQ(status, (std::vector<unsigned char>{1, 0, 1, 0, 1, 0, 1, 0, 0}));
}

TEST(TrackFilter, KeepsTracksThatReturnWithinThreePixels) {
    Points prev(4);
    Points cur = {{0.6f, 0.8f}, {1, 0}, {0, 1.99f}, {0, 2}};
    Points back = {{3, 0}, {2.999f, 0}, {0, 0}, {1.8f, 2.4f}};
    std::vector<float> displacements = {7};
    orbitwalk::keepConsistentTracks(prev, cur, back, displacements);
    EXPECT_EQ(displacements, (std::vector<float>{10, 19}));
    EXPECT_EQ(cur, (Points{{1, 0}, {0, 1.99f}}));
    EXPECT_EQ(prev.size(), 2u);
    EXPECT_EQ(back, (Points{{2.999f, 0}, {0, 0}}));
}

TEST(TrackFilter, FiltersByDisplacementFromTwentyTracksOn) {
    c2DCalculateTransform finder;
    for (const int count : {19, 20}) {
        // Every third track moves by 10 px, the others by 1 px: the split lies between them.
        Points prev, cur;
        for (int i = 0; i < count; ++i) {
            prev.emplace_back(static_cast<float>(i), 0.0f);
            cur.emplace_back(static_cast<float>(i), i % 3 == 0 ? 10.0f : 1.0f);
        }
        Points back = prev;
        EXPECT_EQ(finder.FilterkeyPoints(prev, cur, back), 0);
        const std::size_t kept = count < 20 ? 19 : 13;
        EXPECT_EQ(prev.size(), kept);
        EXPECT_EQ(cur.size(), kept);
        EXPECT_EQ(back.size(), kept);
        EXPECT_EQ(prev.front().x, count < 20 ? 0.0f : 1.0f);
        EXPECT_EQ(prev.back().x, count < 20 ? 18.0f : 19.0f);
    }
}

TEST(LumaReduction, StepsThroughWholeGroupsOfEight) {
    const struct {
        int length, reduced, filled, secondIndex, lastIndex;
    } cases[] = {
        {1080, 270, 264, 4, 1052},      // 6 entries past the last group
        {640, 160, 160, 4, 636},        //
        {360, 90, 88, 4, 348},          //
        {35, 8, 8, 4, 30},              // steps of 4.375: 7 steps reach 30.6
        {4, 1, 0, 0, 0},                //
        {32767, 8191, 8184, 4, 32735},  // steps of 262169 / 65536: 8183 of them reach 32735.1
    };
    for (const auto& c : cases) {
        const auto table = orbitwalk::reductionTable(c.length, c.reduced);
        ASSERT_EQ(table.size(), static_cast<std::size_t>(c.reduced));
        EXPECT_EQ(std::count(table.begin(), table.begin() + c.filled, 0), c.filled > 0 ? 1 : 0);
        EXPECT_EQ(std::count(table.begin() + c.filled, table.end(), 0), c.reduced - c.filled);
        if (c.filled > 0) {
            EXPECT_EQ(table[1], c.secondIndex) << c.length;
            EXPECT_EQ(table[c.filled - 1], c.lastIndex) << c.length;
        }
    }
}

TEST(LumaReduction, PicksTheSourcePixelsAndLeavesTheRestAlone) {
    const int width = 44, height = 36;  // 11x9 reduced, of which 8x8 are written
    std::vector<unsigned char> source(width * height), target(11 * 9, 255);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            source[y * width + x] = static_cast<unsigned char>(x % 4 || y % 4 ? 200 : y + x / 4);
    orbitwalk::reduceLuma(source.data(), width, orbitwalk::reductionTable(height, 9),
                          orbitwalk::reductionTable(width, 11), target.data());
    for (int y = 0; y < 9; ++y)
        for (int x = 0; x < 11; ++x)
            EXPECT_EQ(target[y * 11 + x], x < 8 && y < 8 ? 4 * y + x : 255) << x << "," << y;
}

}  // namespace
