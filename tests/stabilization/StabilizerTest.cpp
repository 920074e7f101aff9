#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "Captures.h"
#include "stabilization/cKalmanFilterStabilization.h"
#include "support/FakePlatform.h"

using testing::ElementsAre;

// An explicit instantiation may name a private member: the way to a routine that the pipeline does
// not run.
using CropProcess = void (cKalmanFilterStabilization::*)(double, double, int, int, int, int, int,
                                                         int);
struct CropProcessKey {};
CropProcess memberOf(CropProcessKey);
template <CropProcess Member>
struct Opened {
    friend CropProcess memberOf(CropProcessKey) { return Member; }
};
template struct Opened<&cKalmanFilterStabilization::__CropSmoothingProcess>;

namespace {

constexpr char kFeedbackLine[] = "__FilterWithFeedBack kalman feedback param diff2 ";

TEST(Stabilizer, RefusesEverythingBeforeItHasASize) {
    sweeps::Stabilizer stabilizer(iVideoStabilization::Create());
    auto record = sweeps::record(640, 360, 5);
    const auto untouched = *record;
    for (const auto& [width, height] : {std::pair{0, 360}, {640, 0}, {-640, 360}, {640, -1}})
        EXPECT_EQ(stabilizer->Initialize(width, height), 1);
    EXPECT_EQ(stabilizer->sendTransformationMatrix(1, 2, 3), 0);
    EXPECT_EQ(stabilizer->doStabilization(0, 1, 0, 0, 0, 0, true), 2);
    EXPECT_EQ(stabilizer->getStabilizationInfo(record.get(), true), 2);
    EXPECT_EQ(std::memcmp(record.get(), &untouched, sizeof untouched), 0);

    EXPECT_EQ(stabilizer->Initialize(640, 360), 0);
    EXPECT_EQ(stabilizer->doStabilization(0, 1, 0, 0, 0, 0, true), 1) << "nothing was sent";
    EXPECT_EQ(stabilizer->getStabilizationInfo(nullptr, true), 2);
    EXPECT_EQ(iVideoStabilization::Destroy(nullptr), 1);
}

TEST(Stabilizer, TakesTheFirstPositionWholeAndThenDifferences) {
    auto stabilizer = sweeps::initialized(640, 360);
    fake_platform::clearLog();
    EXPECT_EQ(stabilizer->sendTransformationMatrix(5, -2, 0.5), 1);
    EXPECT_EQ(stabilizer->sendTransformationMatrix(7, 1, 0.25), 1);
    EXPECT_EQ(stabilizer->sendTransformationMatrix(7, 1, 0.25), 1);
    EXPECT_THAT(
        fake_platform::logTexts("ORBITWALK_ENGINE KALMAN_STABILIZATION"),
        ElementsAre("sendTransformationMatrix : __init = 1, cummulative transform : [5.000000, "
                    "-2.000000, 0.500000]",
                    "sendTransformationMatrix : __init = 1, actual transform : [5.000000, "
                    "-2.000000, 0.500000]",
                    "sendTransformationMatrix : __init = 1, cummulative transform : [7.000000, "
                    "1.000000, 0.250000]",
                    "sendTransformationMatrix : __init = 1, actual transform : [2.000000, "
                    "3.000000, -0.250000]",
                    "sendTransformationMatrix : __init = 1, cummulative transform : [7.000000, "
                    "1.000000, 0.250000]",
                    "sendTransformationMatrix : __init = 1, actual transform : [0.000000, "
                    "0.000000, 0.000000]"));
}

TEST(Stabilizer, SaysTheStagesOfItsSmoothingInOrder) {
    auto stabilizer = sweeps::initialized(1920, 1080);
    sweeps::send(*stabilizer, std::vector<Trajectory>(3));
    fake_platform::clearLog();
    EXPECT_EQ(stabilizer->doStabilization(90, 2, 1, 2, 3, 4, true), 0);
    EXPECT_THAT(
        fake_platform::logTexts("ORBITWALK_ENGINE KALMAN_STABILIZATION"),
        ElementsAre(
            "cKalmanFilterStabilization:doStabilization : __init = 1",
            "cKalmanFilterStabilization:doStabilization : orientation=90, captureDirection=2 -> 1 "
            ": Left2Right, 2 : Right2Left, 3 : Top2Bottom, 4 : Bottom2Top",
            "cKalmanFilterStabilization:doStabilization : cropTop=1, cropLeft=2, cropBottom = 3, "
            "cropRight = 4",
            "__FilterWithFeedBack kalman feedback param diff2 3.000000 0.004000\n",
            "Q.getResource('y'), R.getResource('y') : 0.004000 3.000000\n",
            "min_x, max_x, max_y, min_y : 0 1920 1080 0", "crop smoothing boundaries 0 1920 0 1080",
            "__CalculateprevToCurrNewTransform smooth trajetory size 3\n",
            "__CalculateprevToCurrNewTransform output transform size 3\n"));
}

TEST(Stabilizer, RunsTheFilterUntilEnoughPictureIsLeft) {
    // Speeds and bounds as in the search's own test.
    const struct {
        double speed;
        bool feedback;
        int runs;
        const char* bounds;
    } cases[] = {
        {20, true, 1, "crop smoothing boundaries 12 846 41 458"},
        {50, true, 5, "crop smoothing boundaries 31 810 55 444"},
        {140, true, 11, "crop smoothing boundaries 100 925 43 456"},
        {195, true, 11, "crop smoothing boundaries 0 999 0 499"},
        {20, false, 0, "crop smoothing boundaries 0 999 0 499"},
    };
    for (const auto& c : cases) {
        fake_platform::clearLog();
        sweeps::smoothed(sweeps::steady(40, c.speed), 1000, 500, c.feedback);
        EXPECT_EQ(fake_platform::countLogPrefix(kFeedbackLine), c.runs) << c.speed;
        EXPECT_EQ(fake_platform::countLogPrefix("Q.getResource('y'), R"), c.runs) << c.speed;
        EXPECT_EQ(fake_platform::countLog(c.bounds), 1) << c.speed;
    }
}

TEST(Stabilizer, CropSmoothingPinsTheAxisAcrossTheSweep) {
    cKalmanFilterStabilization stabilizer;
    stabilizer.Initialize(1920, 1080);
    fake_platform::clearLog();
    (stabilizer.*memberOf(CropProcessKey()))(10, 30, 0, 0, 1060, 0, 180, 0);
    // 1 - 20 / 1080, then a full unpinning: 1 - (10 + 1910) / 1920 leaves nothing of the width.
    (stabilizer.*memberOf(CropProcessKey()))(-5, 5, 1, 2, 3, 4, 0, 1);
    (stabilizer.*memberOf(CropProcessKey()))(0, 1920, 1, 2, 3, 1920, 270, 0);
    EXPECT_THAT(
        fake_platform::logTexts(),
        ElementsAre(
            "crop smoothing reverse landscape process as landsape 180 0",
            "crop smoothing  landscape 180 0",
            " crop smoothing max 30.000000 min 10.000000 offset -999999  10 cropRatio "
            "0.981481 0 0 1060 0\n",
            "crop smoothing  landscape 0 1",
            "crop smoothing reverse portrait process as portrait 270 0",
            "crop smoothing portarit mode 270 0",
            " crop smoothing max 1920.000000 min 0.000000 offset -999999  -999999 cropRatio "
            "0.760000 1 2 3 1920\n"));
}

TEST(Stabilizer, SmoothsToThePin) {
    cKalmanFilterStabilization stabilizer;
    stabilizer.Initialize(1920, 1080);
    (stabilizer.*memberOf(CropProcessKey()))(10, 30, 0, 0, 1060, 0, 0, 0);  // y = 10
    sweeps::send(stabilizer, std::vector<Trajectory>(5));
    fake_platform::clearLog();
    EXPECT_EQ(stabilizer.doStabilization(0, 1, 0, 0, 0, 0, true), 0);
    EXPECT_EQ(fake_platform::countLog("min_x, max_x, max_y, min_y : 0 1920 1080 10"), 1);
}

}  // namespace
