#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Sweeps.h"
#include "stabilization/CameraPath.h"
#include "stabilization/FeedbackSearch.h"
#include "stabilization/GaussianSmoothing.h"

using namespace stabilization;

namespace {

struct Sweep {
    explicit Sweep(std::vector<Trajectory> motions, FrameSize frame = {1000, 500})
        : transforms(std::move(motions)), size(frame) {}

    SmoothingInput input() const { return {transforms, path, gaussian, size}; }
    SmoothingResult smooth(bool feedback = true) const {
        return smoothWithFeedback(input(), kFeedbackSteps, feedback);
    }

    std::vector<Trajectory> transforms;
    std::vector<Trajectory> path = rebuildPath(transforms);
    std::vector<Trajectory> gaussian = gaussianSmooth(path, kGaussianRadius);
    FrameSize size;
};

TEST(KalmanSmoothing, StaysAtAGainOfOneHalfWithNoiseOneAndTwo) {
    // P = 1: P' = 2, K = 2 / (2 + 2) = 1/2, and P = 2 x 1/2 = 1 again.
    ScalarKalmanFilter filter(0);
    EXPECT_EQ(filter.update(0, {1, 2}), 0);
    EXPECT_EQ(filter.update(1, {1, 2}), 0.5);
    EXPECT_EQ(filter.update(3, {1, 2}), 1.75);
}

TEST(KalmanSmoothing, FixedVariantStartsEveryAxisAtZero) {
    // K = 1.004 / 1.254, P = 1.004 x (1 - K) = 0.200159..., then K = 0.204159... / 0.454159...
    const auto path = kalmanSmoothFixed(std::vector<Trajectory>{{10, -10, 1}, {10, -10, 1}});
    ASSERT_EQ(path.size(), 2u);
    const double first = 1.004 / 1.254;
    const double variance = 1.004 * (0.25 / 1.254) + 0.004;
    const double second = first + variance / (variance + 0.25) * (1 - first);
    EXPECT_NEAR(path[0].x, 10 * first, 1e-12);
    EXPECT_NEAR(path[1].y, -10 * second, 1e-12);
    EXPECT_NEAR(path[1].a, second, 1e-12);
}

TEST(KalmanSmoothing, FeedbackNoiseGoesFromHardestToLightest) {
    EXPECT_EQ(feedbackNoise(0, 10).process, 0.004);
    EXPECT_EQ(feedbackNoise(0, 10).measurement, 3.0);
    EXPECT_NEAR(feedbackNoise(5, 10).process, 0.022, 1e-15);
    EXPECT_NEAR(feedbackNoise(5, 10).measurement, 1.75, 1e-15);
    EXPECT_NEAR(feedbackNoise(10, 10).process, 0.04, 1e-15);
    EXPECT_NEAR(feedbackNoise(10, 10).measurement, 0.5, 1e-15);
}

TEST(FilterRun, AveragesEstimateAndGaussianAndCropsByTheCorrectedFrames) {
    // Path x 0, 1, 3: estimates 0, 0.5, 1.75 (gain 1/2), with Gaussian x 0, 2, 4 smoothed to
    // 0, 1.25, 2.875, corrected transforms 0, 1 + 0.25 and 2 - 0.125: the frame at 1.25 bounds the
    // left side. The angle's first gain is 1.01 / 1.11, its second 0.10099... / 0.20099... =
    // 0.502465262214.
    const std::vector<Trajectory> transforms{{0, 0, 0}, {1, 0, 1e-6}, {2, -3, 0}};
    const std::vector<Trajectory> path{{0, 0, 0}, {1, 0, 1e-6}, {3, -3, 1e-6}};
    const std::vector<Trajectory> gaussian{{0, 0, 0}, {2, 0, 0}, {4, -3, 0}};
    const SmoothingInput input{transforms, path, gaussian, {1000, 500}};
    const auto run = runFilter(input, {1, 2}, frameCorners(input.size), wholeFrame(input.size));
    ASSERT_EQ(run.smoothPath.size(), 3u);
    EXPECT_EQ(run.smoothPath[1].x, 1.25);
    EXPECT_EQ(run.smoothPath[2].x, 2.875);
    EXPECT_EQ(run.smoothPath[2].y, (-1.5 - 3) / 2);
    EXPECT_NEAR(run.smoothPath[1].a, 0.502465262214e-6 / 2, 1e-17);
    EXPECT_EQ(run.bounds, (CropBounds{1, 1000, 0, 497}));  // y: -3 + 0.75 = -2.25, 497.75
    EXPECT_TRUE(run.keepsEnough);
}

TEST(FilterRun, PinsAnAxisWhateverTheMeasurements) {
    const Sweep sweep(sweeps::handHeld());
    SmoothingInput input = sweep.input();
    const auto corners = frameCorners(input.size);
    const auto free = runFilter(input, {.004, 3}, corners, wholeFrame(input.size));
    input.fixedX = 37;
    const auto pinned = runFilter(input, {.004, 3}, corners, wholeFrame(input.size));
    for (std::size_t i = 0; i < sweep.path.size(); ++i) {
        EXPECT_EQ(pinned.smoothPath[i].x, 37);
        EXPECT_EQ(pinned.smoothPath[i].y, free.smoothPath[i].y);
        EXPECT_EQ(pinned.smoothPath[i].a, free.smoothPath[i].a);
    }
}

TEST(FeedbackSearch, AStillPathPassesTheFirstRunWithTheWholeFrame) {
    const auto result = Sweep(std::vector<Trajectory>(20), {1920, 1080}).smooth();
    EXPECT_EQ(result.step, 0);
    EXPECT_EQ(result.bounds, (CropBounds{0, 1920, 0, 1080}));
    EXPECT_EQ(result.smoothPath, std::vector<Trajectory>(20));
}

TEST(FeedbackSearch, WeakensTheSmoothingAsTheSweepGetsFaster) {
    // The filter lags a sweep of v px/frame by v (1 - K) / K, half of which the crop pays. Steps
    // and bounds before the aspect fit come from a computation of its own outside this program:
    // 12 to 846, 31 to 810 and 100 to 925 of 1000. The fit then trims top and bottom alike.
    const struct {
        double speed;
        std::optional<int> step;
        CropBounds bounds;
    } cases[] = {
        {20, 0, {12, 846, 41, 458}},     // 417 high, 83 less than 500
        {50, 4, {31, 810, 55, 444}},     // 389.5, 110.5 less
        {140, 10, {100, 925, 43, 456}},  // 412.5, 87.5 less
        {195, std::nullopt, {0, 999, 0, 499}},
    };
    for (const auto& c : cases) {
        const auto result = Sweep(sweeps::steady(40, c.speed)).smooth();
        EXPECT_EQ(result.step, c.step) << c.speed;
        EXPECT_EQ(result.bounds, c.bounds) << c.speed;
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
