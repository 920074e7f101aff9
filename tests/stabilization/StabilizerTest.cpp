#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <opencv2/core.hpp>

#include "Captures.h"
#include "stabilization/cKalmanFilterStabilization.h"
#include "support/FakePlatform.h"

using testing::ElementsAre;

namespace {

TEST(Stabilizer, RefusesEverythingBeforeItHasASize) {
    iVideoStabilization* const stabilizer = iVideoStabilization::Create();
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
    EXPECT_EQ(iVideoStabilization::Destroy(stabilizer), 1);
    EXPECT_EQ(iVideoStabilization::Destroy(nullptr), 1);
}

TEST(Stabilizer, SaysWhatItReceivesAndTheStagesOfItsSmoothing) {
    // The first position is taken whole, so frame 0 covers 5.5 to 1925.5 by -2.5 to 1077.5. Of 1915
    // pixels 1077 high allow 1914.67; margins 5 and 1: the far edge gives 1/6 of a third.
    fake_platform::clearLog();
    auto stabilizer = sweeps::fed({{5.5, -2.5, 0}, {}}, 1920, 1080);
    EXPECT_EQ(stabilizer.doStabilization(90, 2, 1, 2, 3, 4, true), 0);
    EXPECT_THAT(
        fake_platform::logTexts("ORBITWALK_ENGINE KALMAN_STABILIZATION"),
        ElementsAre(
            "cKalmanFilterStabilization::Initialize : __init = 0, [1920 X 1080]",
            "sendTransformationMatrix : __init = 1, cummulative transform : [5.500000, -2.500000, "
            "0.000000]",
            "sendTransformationMatrix : __init = 1, actual transform : [5.500000, -2.500000, "
            "0.000000]",
            "sendTransformationMatrix : __init = 1, cummulative transform : [5.500000, -2.500000, "
            "0.000000]",
            "sendTransformationMatrix : __init = 1, actual transform : [0.000000, 0.000000, "
            "0.000000]",
            "cKalmanFilterStabilization:doStabilization : __init = 1",
            "cKalmanFilterStabilization:doStabilization : orientation=90, captureDirection=2 -> 1 "
            ": Left2Right, 2 : Right2Left, 3 : Top2Bottom, 4 : Bottom2Top",
            "cKalmanFilterStabilization:doStabilization : cropTop=1, cropLeft=2, cropBottom = 3, "
            "cropRight = 4",
            "__FilterWithFeedBack kalman feedback param diff2 3.000000 0.004000\n",
            "Q.getResource('y'), R.getResource('y') : 0.004000 3.000000\n",
            "min_x, max_x, max_y, min_y : 5 1920 1077 0", "crop smoothing boundaries 5 1919 0 1077",
            "__CalculateprevToCurrNewTransform smooth trajetory size 2\n",
            "__CalculateprevToCurrNewTransform output transform size 2\n"));
}

TEST(Stabilizer, CropSmoothingPinsTheAxisAcrossTheSweep) {
    auto stabilizer = sweeps::fed({{}, {}}, 1920, 1080);
    fake_platform::clearLog();
    stabilizer.__CropSmoothingProcess(10, 30, 0, 0, 1060, 0, 180, 0);  // 1 - 20 / 1080
    stabilizer.__CropSmoothingProcess(-5, 5, 1, 2, 3, 4, 0, 1);
    EXPECT_EQ(stabilizer.doStabilization(0, 1, 0, 0, 0, 0, true), 0);
    // The pin leaves 1070 of the height, which allows 1902.2 of the width: 8.9 off either edge.
    EXPECT_EQ(fake_platform::countLog("min_x, max_x, max_y, min_y : 0 1920 1080 10"), 1);
    stabilizer.__CropSmoothingProcess(0, 1920, 1, 2, 3, 1920, 270,
                                      0);  // 1 - (10 + 1910) / 1920: nothing left, unpinned
    auto said = fake_platform::logTexts();
    std::erase_if(said, [](const auto& text) { return text.find("crop smoothing") > 1; });
    EXPECT_THAT(
        said,
        ElementsAre("crop smoothing reverse landscape process as landsape 180 0",
                    "crop smoothing  landscape 180 0",
                    " crop smoothing max 30.000000 min 10.000000 offset -999999  10 "
                    "cropRatio 0.981481 0 0 1060 0\n",
                    "crop smoothing  landscape 0 1", "crop smoothing boundaries 8 1911 10 1080",
                    "crop smoothing reverse portrait process as portrait 270 0",
                    "crop smoothing portarit mode 270 0",
                    " crop smoothing max 1920.000000 min 0.000000 offset -999999  -999999 "
                    "cropRatio 0.760000 1 2 3 1920\n"));
}

}  // namespace
