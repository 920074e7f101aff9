#include <gmock/gmock.h>

#include <functional>

#include "PointSets.h"
#include "Scene.h"
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

// Of the generator x -> (x mod 2^32) * 4164903690 + (x div 2^32) that starts at 64 ones: its first
// outputs modulo 50 are 5 4 40 23 31 12 1 30 23 10 35 44 46 49 18 3 46 20 18 20, modulo 5 are
// 0 4 0 3 1 2 1 0, modulo 8 are 5 4 7.
TEST(RigidSample, DrawsFromTheGeneratorInOrder) {
    const Points points = onCircle(50);
    cv::RNG random(~std::uint64_t{0});
    for (const orbitwalk::SampleIndices& expected : std::vector<orbitwalk::SampleIndices>{
             {5, 4, 40}, {23, 31, 12}, {1, 30, 23}, {10, 35, 44}, {46, 49, 18}, {3, 46, 20}})
        EXPECT_EQ(orbitwalk::drawSample(random, points, points), expected);
}

TEST(RigidSample, DrawsAnUnsuitableIndexAgain) {
    const auto first = [](const Points& a, const Points& b) {
        cv::RNG random(~std::uint64_t{0});
        return orbitwalk::drawSample(random, a, b);
    };
    using Sample = orbitwalk::SampleIndices;
    EXPECT_EQ(first(onCircle(5), onCircle(5)), (Sample{0, 4, 3})) << "0 is in the sample already";

    const Points points = onCircle(50);
    Points changed = points;
    changed[4] = changed[5];
    EXPECT_EQ(first(points, changed), (Sample{5, 40, 23})) << "4 coincides with 5";
    changed = points;
    changed[40] = 2 * changed[4] - changed[5];
    EXPECT_EQ(first(points, changed), (Sample{5, 4, 23})) << "40 is in line with 5 and 4";
    EXPECT_EQ(first(changed, points), (Sample{5, 4, 23}));
    EXPECT_EQ(first(Points(50, {1, 1}), points), std::nullopt);
}

TEST(RigidLeastSquares, GivesTheFitsWorkedOutByHand) {
    cv::Mat m(2, 3, CV_64F);
    // Normal equations 2c+tx+ty=3, 2s-tx+ty=0, c-s+3tx=1, c+s+3ty=2.
    const Points corner = {{0, 0}, {1, 0}, {0, 1}}, stretched = {{0, 0}, {1, 0}, {0, 2}};
    orbitwalk::getRTMatrix(corner.data(), stretched.data(), 3, m, false);
    expectTransform(m, {1.5, 0.25, -0.25, -0.25, 1.5, 0.25}, 1e-12, 1e-12);
    // Only (x, y, 1) can be fitted: the square's alternating residual of 1 remains.
    const Points square = {{0, 0}, {2, 0}, {0, 2}, {2, 2}},
                 pulled = {{0, 0}, {2, 0}, {0, 2}, {6, 2}};
    orbitwalk::getRTMatrix(square.data(), pulled.data(), 4, m, true);
    expectTransform(m, {2, 1, -1, 0, 1, 0}, 1e-12, 1e-12);
}

TEST(RigidLeastSquares, FormsProductsInSinglePrecision) {
    // 4097^2 needs 25 bits: as a float it is 16785408, one less. With b = a the sums T0 and S00
    // agree whatever their width; with b = 1 px instead, c = T0/S00 shows it.
    const cv::Point2f a[] = {{4097, 0}, {-4097, 0}}, b[] = {{1, 0}, {-1, 0}};
    cv::Mat m(2, 3, CV_64F);
    orbitwalk::getRTMatrix(a, b, 2, m, false);
    EXPECT_NEAR(m.at<double>(0, 0), 4097.0 / 16785408.0, 1e-13);
}

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
