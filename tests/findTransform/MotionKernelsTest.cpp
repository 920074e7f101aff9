#include <gmock/gmock.h>

#include "PointSets.h"
#include "Scene.h"
#include "orbitwalk/MotionKernels.h"

namespace {

using namespace point_sets;

TEST(RigidTransform, TracksAGridBetweenImages) {
    const Scene scene;
    const auto image = [&](int width, int height, double x, double y) {
        const auto luma = scene.frame(width, height, {x, y, 0});
        return cv::Mat(height, width, CV_8UC1, const_cast<unsigned char*>(luma.data())).clone();
    };
    const cv::Matx23d pan(1, 0, 3, 0, 1, 2);
    const cv::Mat first = image(160, 120, 0, 0), second = image(160, 120, 3, 2);
    // The tracker stops at steps of 0.1 px, and the grid's outer points look past the border.
    for (const bool fullAffine : {false, true})
        expectTransform(cv::estimateRigidTransform(first, second, fullAffine), pan, 0.01, 0.5);
    cv::Mat firstColour, secondColour;
    cv::merge(std::vector<cv::Mat>(3, first), firstColour);
    cv::merge(std::vector<cv::Mat>(3, second), secondColour);
    expectTransform(cv::estimateRigidTransform(firstColour, secondColour, false), pan, 0.01, 0.5);
    // Half size: (6, 4) px are (3, 2) there, and that is divided by 2.
    expectTransform(cv::estimateRigidTransform(image(320, 240, 0, 0), image(320, 240, 6, 4), false),
                    {1, 0, 1.5, 0, 1, 1}, 0.01, 0.25);
    for (const cv::Size size : {cv::Size(1, 1), cv::Size(3, 300), cv::Size(4000, 1)}) {
        const cv::Mat flat(size, CV_8UC1, cv::Scalar(9));
        EXPECT_TRUE(cv::estimateRigidTransform(flat, flat, false).empty());
    }
}

TEST(MotionKernels, AreOpenCVsTrackerAndSelector) {
    const Scene scene;
    auto luma = scene.frame(200, 150, {}), moved = scene.frame(200, 150, {2, 1, 0});
    const cv::Mat image(150, 200, CV_8UC1, luma.data()), next(150, 200, CV_8UC1, moved.data());
    Points corners, tracked;
    cv::Mat inner(image.size(), CV_8UC1, cv::Scalar(0));  // none whose window leaves the image
    inner(cv::Range(30, 120), cv::Range(30, 170)) = 255;
    NURV::goodFeaturesToTrack(image, corners, 5, 0.05, 10, inner);
    ASSERT_EQ(corners.size(), 5u);
    std::vector<unsigned char> status;
    NURV::calcOpticalFlowPyrLK(image, next, corners, tracked, status, cv::noArray());
    ASSERT_THAT(status, testing::Each(1));
    for (std::size_t i = 0; i < corners.size(); ++i)  // grey levels are rounded: 0.2 px
        EXPECT_LT(cv::norm(tracked[i] - corners[i] - cv::Point2f(2, 1)), 0.2);
    std::vector<cv::Mat> pyramid;
    EXPECT_EQ(NURV::buildOpticalFlowPyramid(image, pyramid, cv::Size(21, 21), 2), 2);
    EXPECT_EQ(pyramid.size(), 6u) << "each level with its derivatives";
}

}  // namespace
