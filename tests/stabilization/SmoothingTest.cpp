#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Sweeps.h"
#include "stabilization/CameraPath.h"
#include "stabilization/FeedbackSearch.h"

using namespace orbitwalk;

namespace {

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

TEST(KalmanSmoothing, StaysAtAGainOfOneHalfWithNoiseOneAndTwo) {
    // P = 1: P' = 2, K = 2 / (2 + 2) = 1/2, and P = 2 x 1/2 = 1 again.
    ScalarKalmanFilter filter(0);
    EXPECT_EQ(filter.update(0, {1, 2}), 0);
    EXPECT_EQ(filter.update(1, {1, 2}), 0.5);
    EXPECT_EQ(filter.update(3, {1, 2}), 1.75);
}

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
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double x : {std::nan(""), infinity, -infinity, 1e30, 1e308, -1e308}) {
        auto transforms = sweeps::handHeld();
        transforms[5] = {x, -x, x};
        EXPECT_EQ(Sweep(transforms).smooth().step, std::nullopt) << x;
    }
    EXPECT_EQ(Sweep({{3, 4, 0}}).smooth().step, std::nullopt) << "a path of one point";
}

}  // namespace
