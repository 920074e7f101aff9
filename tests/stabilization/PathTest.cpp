#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <opencv2/core.hpp>
#include <random>

#include "Sweeps.h"
#include "common/FixedPoint.h"
#include "stabilization/CameraPath.h"
#include "stabilization/FeedbackSearch.h"
#include "stabilization/RenderMatrix.h"

using namespace orbitwalk;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(CorrectedTransforms, CrossOverIsTheFirstOfFramesOneToFourInLongSweeps) {
    // Corrections by which the smoothed path leaves the path; every frame moves by (10, 10).
    const struct {
        std::size_t frames;
        std::vector<double> correctionX;
        std::vector<double> correctionY;
        int expected;
    } cases[] = {
        {11, {0, 9, 10, 50}, {}, 2},        // equal is enough, the first hit stays
        {11, {0, -12}, {}, 1},              // magnitudes are compared
        {11, {}, {0, 0, 0, 11}, 3},         // y counts as well
        {11, {30, 0, 0, 12}, {}, 3},        // a hit at frame 0 leaves the search open
        {11, {30, 0, 0, 0, 0, 99}, {}, 0},  // frame 5 is too late
        {11, {0, 0, 0, 0, 10}, {}, 4},      //
        {10, {0, 99}, {}, 0},               // ten frames are too few
    };
    for (const auto& c : cases) {
        const std::vector<Trajectory> transforms(c.frames, {10, 10, 0});
        const std::vector<Trajectory> path(c.frames);
        auto smooth = path;
        for (std::size_t i = 0; i < c.correctionX.size(); ++i)
            smooth[i].x = c.correctionX[i];
        for (std::size_t i = 0; i < c.correctionY.size(); ++i)
            smooth[i].y = c.correctionY[i];
        EXPECT_EQ(correctTransforms(transforms, path, smooth).crossOverPoint, c.expected)
            << "case " << &c - cases;
    }
}

TEST(GaussianSmoothing, LeavesAStraightLineStraightUpToItsEnds) {
    for (std::size_t frames : {2u, 5u, 11u, 40u}) {
        const std::vector<Trajectory> transforms(frames, {12.5, -3, .001});
        const auto path = rebuildPath(transforms);
        const auto smooth = gaussianSmooth(path, 10);
        ASSERT_EQ(smooth.size(), frames);
        for (std::size_t i = 0; i < frames; ++i) {
            EXPECT_NEAR(smooth[i].x, path[i].x, 1e-10) << i << " of " << frames;
            EXPECT_NEAR(smooth[i].y, path[i].y, 1e-10);
            EXPECT_NEAR(smooth[i].a, path[i].a, 1e-13);
        }
    }
}

TEST(GaussianSmoothing, HasNoResultWithoutRadiusOrPathAndNoNumberForOnePoint) {
    EXPECT_TRUE(gaussianSmooth(std::vector<Trajectory>(3), 0).empty());
    EXPECT_TRUE(gaussianSmooth({}, 10).empty());
    const auto one = gaussianSmooth(std::vector<Trajectory>{{7, 0, 0}}, 10);
    ASSERT_EQ(one.size(), 1u);
    EXPECT_TRUE(std::isnan(one[0].x) && std::isnan(one[0].y) && std::isnan(one[0].a));
}

struct Sweep {
    explicit Sweep(std::vector<Trajectory> motions) : transforms(std::move(motions)) {}

    SmoothingInput input() const { return {transforms, path, gaussian, {1000, 500}}; }
    SmoothingResult smooth(bool feedback = true) const {
        return smoothWithFeedback(input(), kFeedbackSteps, feedback);
    }

    std::vector<Trajectory> transforms;
    std::vector<Trajectory> path = rebuildPath(transforms);
    std::vector<Trajectory> gaussian = gaussianSmooth(path, kGaussianRadius);
};

TEST(KalmanSmoothing, FixedVariantStartsEveryAxisAtZero) {
    // Gains 1.004 / 1.254 and, from the variance 0.204159..., 0.449532...
    const auto path = kalmanSmoothFixed(std::vector<Trajectory>{{10, -10, 1}, {10, -10, 1}});
    ASSERT_EQ(path.size(), 2u);
    EXPECT_NEAR(path[0].x, 8.006379585326954, 1e-12);
    EXPECT_NEAR(path[1].y, -8.902576924967868, 1e-12);
    EXPECT_NEAR(path[1].a, 0.8902576924967868, 1e-12);
}

TEST(FeedbackSearch, WeakensTheSmoothingAsTheSweepGetsFaster) {
    for (const auto& sweep : sweeps::kFeedback) {
        const auto result = Sweep(sweeps::steady(40, sweep.speed)).smooth();
        EXPECT_EQ(result.step, sweep.step) << sweep.speed;
        EXPECT_EQ(result.bounds, sweep.bounds) << sweep.speed;
    }
}

TEST(FeedbackSearch, WithoutFeedbackCorrectsNothing) {
    const Sweep sweep(sweeps::handHeld());
    for (const auto& result : {sweep.smooth(false), smoothWithFeedback(sweep.input(), -1, true)}) {
        EXPECT_EQ(result.step, std::nullopt);
        EXPECT_EQ(result.bounds, (CropBounds{0, 999, 0, 499}));
        for (std::size_t i = 1; i < sweep.path.size(); ++i)
            EXPECT_NEAR(result.smoothPath[i].x, sweep.path[i - 1].x, 1e-12);
    }
}

TEST(FeedbackSearch, PathsWithoutUsableNumbersCorrectNothing) {
    for (const double x : {std::nan(""), kInfinity, -kInfinity, 1e30, 1e308, -1e308}) {
        auto transforms = sweeps::handHeld();
        transforms[5] = {x, -x, x};
        EXPECT_EQ(Sweep(transforms).smooth().step, std::nullopt) << x;
    }
    EXPECT_EQ(Sweep({{3, 4, 0}}).smooth().step, std::nullopt) << "a path of one point";
}

FixedMatrix rendered(const Trajectory& transform) {
    return renderMatrix(rigidMatrix(transform));
}

TEST(RenderMatrix, TransposesTheInverseOfTheMotion) {
    // M^-1 = [R' | -R' t]; with R' = [.8 .6; -.6 .8] and t = (10, -4) -R' t = (-5.6, 9.2).
    const double expected[] = {.8, -.6, 0, .6, .8, 0, -5.6, 9.2, 1};
    const auto matrix = rendered({10, -4, std::atan2(.6, .8)});
    for (int i = 0; i < 9; ++i)
        EXPECT_NEAR(matrix[i], 1000000 * expected[i], 1.5) << "element " << i;
    EXPECT_EQ(rendered({}), kIdentityMatrix);
}

TEST(RenderMatrix, SaturatesLongTranslations) {
    const auto matrix = rendered({5000, -5000, 0});
    EXPECT_EQ(matrix[6], std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(matrix[7], std::numeric_limits<std::int32_t>::max());
    EXPECT_NEAR(matrix[0], 1000000, 1);
}

TEST(RenderMatrix, IsTheIdentityForAMotionThatHasNoInverse) {
    for (const double value : {std::nan(""), kInfinity, -kInfinity, 1e9, -1e30, 1e300}) {
        EXPECT_EQ(rendered({value, 0, 0}), kIdentityMatrix) << value;
        EXPECT_EQ(rendered({0, value, 0}), kIdentityMatrix) << value;
    }
    EXPECT_EQ(rendered({0, 0, kInfinity}), kIdentityMatrix);
}

TEST(RenderMatrix, HoldsWhatOpenCVInvertsToTheUnit) {
    std::mt19937 random(7);
    const auto uniform = [&random](double range) {
        return (static_cast<double>(random()) / 0x1p31 - 1) * range;
    };
#ifdef __aarch64__
    constexpr int kUnits = 1;  // built with fused multiply and add
#else
    constexpr int kUnits = 0;
#endif
    for (int i = 0; i < 100000; ++i) {
        const double ranges[] = {0, 1, 30, 2000};
        const cv::Mat rigid =
            rigidMatrix({uniform(ranges[random() % 4]), uniform(ranges[random() % 4]),
                         uniform(ranges[random() % 4] / 600)});
        const cv::Mat inverse = rigid.t().inv(cv::DECOMP_SVD);
        const FixedMatrix matrix = renderMatrix(rigid);
        for (int k = 0; k < 9; ++k)
            ASSERT_LE(std::abs(matrix[k] - toFixedPoint(inverse.at<double>(k / 3, k % 3))), kUnits)
                << rigid << ", element " << k;
    }
}

}  // namespace
