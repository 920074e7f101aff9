#include <gmock/gmock.h>

#include <functional>

#include "PointSets.h"
#include "findTransform/2D/RigidFit.h"
#include "findTransform/2D/RigidTransform.h"
#include "orbitwalk/MotionKernels.h"

namespace {

using namespace point_sets;

TEST(RigidTransform, IsEmptyWhereNoSampleDeterminesOne) {
    const Points line = {{0, 0}, {10, 5}, {20, 10}, {40, 20}, {60, 30}, {80, 40}};
    const Points twoPlaces = {{0, 0}, {10, 0}, {0, 0}, {10, 0}, {0, 0}, {10, 0}};
    // Seen from any of the three, the sine of the angle is at most 0.008; 0.01 is the tolerance.
    const Points nearlyLine = {{0, 0}, {50, 0}, {100, 0.4f}};
    for (const Points& points :
         {Points{}, Points{{0, 0}, {10, 5}}, line, Points(6, {3, 4}), twoPlaces, nearlyLine}) {
        EXPECT_TRUE(orbitwalk::rigidTransform(points, points, false).empty()) << points;
        const Points spread = onCircle(static_cast<int>(points.size()));
        EXPECT_TRUE(orbitwalk::rigidTransform(spread, points, false).empty()) << points;
    }
    const Points bent = {{0, 0}, {50, 0}, {100, 1.2f}};
    EXPECT_FALSE(orbitwalk::rigidTransform(bent, bent, false).empty());
}

TEST(RigidTransform, FollowsAnExactMotion) {
    const Points from = scattered(50, 7);
    const cv::Matx23d pan(1, 0, 3, 0, 1, -2);
    expectTransform(orbitwalk::rigidTransform(from, mapped(from, pan), false), pan, 1e-6, 1e-4);
    // Scale 1.1 is part of the model, a shear is not, unless all six entries are free.
    const cv::Matx23d zoom(1.1 * 0.8, -1.1 * 0.6, 5, 1.1 * 0.6, 1.1 * 0.8, 7);
    expectTransform(orbitwalk::rigidTransform(from, mapped(from, zoom), false), zoom, 1e-6, 1e-4);
    const cv::Matx23d shear(1, 0.5, 3, -0.2, 0.7, -2);
    expectTransform(orbitwalk::rigidTransform(from, mapped(from, shear), true), shear, 1e-6, 1e-4);
}

TEST(RigidTransform, FollowsTheMajorityAndRepeatsItselfExactly) {
    const cv::Matx23d truth = rotation(5 * CV_PI / 180, 4, -6);
    const Points from = scattered(100, 3);
    Points to = mapped(from, truth);
    std::mt19937 random(5);
    for (int i = 0; i < 100; ++i)
        if (i % 5 >= 3)
            to[i] += cv::Point2f(500.0f + static_cast<float>(random() % 2000),
                                 500.0f + static_cast<float>(random() % 2000));
    const cv::Mat first = cv::estimateRigidTransform(from, to, false);
    // The outliers lie 500 px or more away, the tolerance is 5 % of about 3000 px: none joins the
    // fit.
    expectTransform(first, truth, 1e-5, 1e-3);
    const cv::Mat second = orbitwalk::rigidTransform(from, to, false);
    EXPECT_TRUE(std::equal(first.begin<double>(), first.end<double>(), second.begin<double>()));
}

TEST(RigidTransform, NeedsHalfOfThePairsAndNoMore) {
    const Points from = scattered(10, 11);
    const Points away = {{700, 0}, {0, 700}, {-700, 300}, {400, -700}, {-300, -800}};
    Points to = from;
    for (int i = 0; i < 5; ++i)
        to[i] += away[i];
    expectTransform(orbitwalk::rigidTransform(from, to, false), {1, 0, 0, 0, 1, 0}, 1e-6, 1e-4);
    to[5] += cv::Point2f(900, 900);
    EXPECT_TRUE(orbitwalk::rigidTransform(from, to, false).empty());
}

TEST(RigidTransform, TakesTheFirstSampleThatHalfOfThePairsAgreeWith) {
    // Two motions share the eight pairs. The first sample, 5 4 7, lies in one of them; a generator
    // that starts at 32 ones meets the other one first.
    const Points from = onCircle(8);
    const cv::Matx23d mine = rotation(0.3, 2000, 0), other = rotation(-0.3, 0, 2000);
    Points to = mapped(from, other);
    for (const int i : {0, 4, 5, 7})
        to[i] = mapped(from, mine)[i];
    expectTransform(orbitwalk::rigidTransform(from, to, false), mine, 1e-5, 1e-2);
}

void expectError(const std::function<void()>& call, const char* text, const char* function) {
    try {
        call();
        ADD_FAILURE() << "not raised: " << text;
    } catch (const cv::Exception& e) {
        EXPECT_EQ(e.err, text);
        EXPECT_EQ(e.func, function);
    }
}

TEST(RigidTransform, RaisesOpenCVErrorsForUnsuitableInputs) {
    const Points three(3), four(4);
    const std::vector<cv::Point> integers(3);
    const cv::Mat real(4, 5, CV_32FC1), twoChannels(4, 5, CV_8UC2);
    const struct {
        cv::_InputArray src, dst;
        const char* text;
    } cases[] = {
        {three, four, "Both input images must have the same size"},
        {three, integers, "Both input images must have the same data type"},
        {real, real, "Both input images must have either 8uC1 or 8uC3 type"},
        {twoChannels, twoChannels, "cn == 1 || cn == 3 || cn == 4"},
    };
    // The name also proves that the call below reaches this library's function: OpenCV's own says
    // less.
    for (const auto& c : cases)
        expectError([&] { cv::estimateRigidTransform(c.src, c.dst, false); }, c.text,
                    "cv::Mat cv::estimateRigidTransform(cv::InputArray, cv::InputArray, bool)");
    cv::Mat notContinuous = cv::Mat(2, 4, CV_64F).colRange(0, 3);
    expectError([&] { orbitwalk::getRTMatrix(&three[0], &three[0], 3, notContinuous, false); },
                "M.isContinuous()",
                "void getRTMatrix(const Point2f*, const Point2f*, int, cv::Mat&, bool)");
}

TEST(RigidTransform, TakesPointsOfAnyNumericTypeAndShape) {
    const cv::Mat from = (cv::Mat_<int>(4, 2) << 0, 0, 100, 0, 0, 100, 100, 100);
    const cv::Mat to = from + 7;
    const cv::Matx23d pan(1, 0, 7, 0, 1, 7);
    expectTransform(orbitwalk::rigidTransform(from, to, false), pan, 1e-6, 1e-4);
    cv::Mat wide(4, 3, CV_64FC2, cv::Scalar::all(0));
    from.reshape(2).convertTo(wide.col(1), CV_64F);
    const cv::Mat column = wide.col(1);
    expectTransform(orbitwalk::rigidTransform(column, column + cv::Scalar(7, 7), false), pan, 1e-6,
                    1e-4);
}

}  // namespace
