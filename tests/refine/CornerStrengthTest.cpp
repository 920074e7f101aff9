#include "motion/CornerStrength.h"

#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

namespace orbitwalk::refine {
namespace {

TEST(CornerStrength, IsOpenCvsInsideThePicture) {
    for (const cv::Size size : {cv::Size(5, 5), cv::Size(64, 33), cv::Size(127, 80)})
        for (const int grey : {2, 256}) {
            cv::Mat1b picture(size);
            cv::RNG random(7);
            random.fill(picture, cv::RNG::UNIFORM, 0, grey);
            picture *= 255 / (grey - 1);
            cv::Mat1f strength(3, 3), expected;
            cornerStrength(picture, strength);
            cv::cornerMinEigenVal(picture, expected, 3);
            ASSERT_EQ(strength.size(), size);
            const cv::Rect inside(2, 2, size.width - 4, size.height - 4);
            EXPECT_LT(cv::norm(strength(inside), expected(inside), cv::NORM_INF), 1e-6);
            EXPECT_GT(cv::norm(expected(inside), cv::NORM_INF), 1e-3);
            cv::Mat1f outside = strength.clone();
            outside(inside) = 0.0f;
            EXPECT_EQ(cv::countNonZero(outside), 0);
        }
}

TEST(CornerStrength, FindsNoneWhereThereIsNoPlaceInside) {
    for (const cv::Size size : {cv::Size(1, 1), cv::Size(4, 9), cv::Size(9, 4)}) {
        cv::Mat1b picture(size);
        cv::randu(picture, 0, 256);
        cv::Mat1f strength;
        cornerStrength(picture, strength);
        EXPECT_EQ(cv::countNonZero(strength), 0);
    }
}

}  // namespace
}  // namespace orbitwalk::refine
