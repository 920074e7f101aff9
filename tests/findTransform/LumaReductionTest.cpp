#include "findTransform/2D/LumaReduction.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

TEST(LumaReduction, AcceptsSidesFromOneReducedPixelToTheWidthOfTheSteps) {
    for (const auto& [width, height] : {std::pair{4, 4}, {4, 32767}, {32767, 32767}, {1920, 1080}})
        EXPECT_TRUE(orbitwalk::canReduce(width, height)) << width << "x" << height;
    for (const auto& [width, height] :
         {std::pair{0, 480}, {640, -1}, {3, 100}, {100, 3}, {32768, 8}, {8, 32768}})
        EXPECT_FALSE(orbitwalk::canReduce(width, height)) << width << "x" << height;
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

TEST(LumaReduction, MeasuresInAViewOfTheCentralThreeFifths) {
    const cv::Mat image(90, 163, CV_8UC1);
    const cv::Mat view = orbitwalk::centralView(image);
    EXPECT_EQ(view.size(), cv::Size(99, 54));
    EXPECT_EQ(view.ptr(), image.ptr(18) + 32);
    EXPECT_EQ(orbitwalk::centralView(cv::Mat(1, 4, CV_8UC1)).size(), cv::Size(4, 1));
}

}  // namespace
