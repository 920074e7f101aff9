#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <opencv2/core.hpp>

#include "Captures.h"
#include "stabilization/cKalmanFilterStabilization.h"
#include "support/FakePlatform.h"
#include "support/Transcript.h"

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
    test_support::expectTranscript(fake_platform::logTexts("ORBITWALK_ENGINE KALMAN_STABILIZATION"),
                                   "stabilizer-smoothing");
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
    test_support::expectTranscript(said, "stabilizer-crop");
}

}  // namespace
