
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

#include "simulate/ShakyPath.h"

namespace orbitwalk::tool {
namespace {

constexpr FrameSize fullHd{1920, 1080};
constexpr double quarterTurn = std::numbers::pi / 2;

void expectMotion(const Trajectory& found, const Trajectory& wanted) {
    EXPECT_NEAR(found.x, wanted.x, 1e-9);
    EXPECT_NEAR(found.y, wanted.y, 1e-9);
    EXPECT_NEAR(found.a, wanted.a, 1e-12);
}

TEST(TrueMotion, IsMeasuredFromTheCornerOfTheCentralThreeFifths) {
    // 1920 / 4 / 5 = 96 columns and 1080 / 4 / 5 = 54 rows of the quarter-size picture.
    EXPECT_EQ(measuringOrigin(fullHd), (PicturePoint{384, 216}));
    EXPECT_EQ(measuringOrigin({642, 362}), (PicturePoint{128, 72}));
}

TEST(TrueMotion, SumsTheStepsComponentByComponent) {
    const std::vector<CameraPose> poses{{0, 0, 0}, {0, 0, quarterTurn}, {0, 0, 0}};
    const auto rows = trueMotions(poses, fullHd);
    ASSERT_EQ(rows.size(), 3u);
    expectMotion(rows[0].sum, {});
    expectMotion(rows[1].sum, {252, 899, -quarterTurn});
    // Back the other way (x, y) becomes (-y, x): a step of (899, -252), though the picture is where
    // it was.
    expectMotion(rows[2].step, {899, -252, quarterTurn});
    expectMotion(rows[2].sum, {1151, 647, 0});
}

double powerAt(const std::vector<double>& values, double frequencyHz, double rate) {
    std::complex<double> sum;
    for (std::size_t k = 0; k < values.size(); ++k)
        sum += values[k] * std::polar(1.0, -2 * std::numbers::pi * frequencyHz * double(k) / rate);
    return std::norm(sum) / double(values.size());
}

TEST(HandShake, IsSlowDriftWithTheTremorAskedAndNothingElse) {
    constexpr double rate = 60;
    std::vector<double> values;
    const auto strongest = [&](double from, double to) {
        double most = 0;
        for (double hz = from; hz <= to; hz += 0.05)
            most = std::max(most, powerAt(values, hz, rate));
        return most;
    };
    for (const double share : {0.2, 4.0}) {
        values = handShake(1200, rate, {8, share}, cv::RNG(5));
        const double drift = strongest(0.5, 3), tremor = strongest(8, 12);
        EXPECT_GT(tremor, 3 * strongest(5, 7));
        EXPECT_GT(tremor, 3 * strongest(14, 30));
        EXPECT_GT(share < 1 ? drift : tremor, 10 * std::min(drift, tremor));
    }
}

TEST(ShakyPath, SweepsSteadilyAndShakesUpToTheStrengthAsked) {
    SimulationSettings settings;
    settings.direction = SweepDirection::Bottom2Top;
    const auto poses = cameraPath(settings);
    double x = 0, y = 0, roll = 0;
    for (int k = 0; k < settings.frames; ++k) {
        x = std::max(x, std::abs(poses[k].x));
        y = std::max(y, std::abs(poses[k].y + settings.speed * k));
        roll = std::max(roll, std::abs(poses[k].a));
    }
    EXPECT_NEAR(x, settings.shake, 1e-9);
    EXPECT_NEAR(y, settings.shake, 1e-9);
    EXPECT_NEAR(roll, settings.roll, 1e-12);
}

}  // namespace
}  // namespace orbitwalk::tool
