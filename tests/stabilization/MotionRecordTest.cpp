#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "Captures.h"
#include "support/FakePlatform.h"
#include "support/Transcript.h"

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 360;
constexpr int kInvalid = -7;
constexpr int kIdentity[9] = {1000000, 0, 0, 0, 1000000, 0, 0, 0, 1000000};

/// Which matrix of the other record each frame has; kInvalid for the identity.
std::vector<int> sources(const __kelOBWKDXMetaData& record, const __kelOBWKDXMetaData& other) {
    std::vector<int> found;
    for (int i = 0; i < record.numFrames; ++i) {
        const auto equals = [&](const int(&m)[9]) {
            return std::ranges::equal(m, record.renderMat[i]);
        };
        const auto at = std::ranges::find_if(other.renderMat, equals);
        found.push_back(equals(kIdentity) ? kInvalid : static_cast<int>(at - other.renderMat));
    }
    return found;
}

TEST(MotionRecord, HoldsWhatAComputationOfItsOwnGives) {
    // The hand-held sweep, recomputed from the method's formulas by a program of its own. Matrices
    // may differ by a unit: that one inverts in closed form, the engine by decomposition.
    auto stabilizer = sweeps::fed(sweeps::handHeld(), kWidth, kHeight);
    auto landscape = sweeps::record(kWidth, kHeight, 13);
    auto portrait = sweeps::record(kWidth, kHeight, 13);
    portrait->orientation = 90;
    for (auto* record : {landscape.get(), portrait.get()}) {
        stabilizer.doStabilization(0, 1, 0, 0, 0, 0, true);  // the same a second time
        EXPECT_EQ(stabilizer.getStabilizationInfo(record, true), 0);
        EXPECT_THAT(record->cropParam, ElementsAre(5, 4, 614, 346));
        EXPECT_EQ(record->matrixRows, 3);
        EXPECT_EQ(record->matrixCols, 3);
        EXPECT_EQ(record->leftBorderFrames, 6);
        EXPECT_EQ(record->rightBorderFrames, 6);
        EXPECT_THAT(record->leftBorderMat[6], Each(0));
        EXPECT_THAT(record->rightBorderMat[6], Each(0));
    }
    const struct {
        const std::int32_t (&entry)[9];
        int c, s, x, y;
    } cases[] = {
        {landscape->renderMat[0], 1000000, 0, 0, 0},
        {landscape->renderMat[1], 999999, 297, -5480260, -131039},
        {landscape->renderMat[5], 999998, -1641, 3794720, -206222},
        {landscape->renderMat[12], 999999, -457, 20674106, 872875},
        {landscape->leftBorderMat[0], 1000000, 0, -5000000, 131015},
        {landscape->leftBorderMat[5], 1000000, 0, -891898, 124},
        {landscape->rightBorderMat[0], 1000000, 0, 20728149, -67776},
        {landscape->rightBorderMat[5], 1000000, 0, 21000000, -166418},
        {portrait->renderMat[12], 999999, -457, 20674106, 872875},
        {portrait->leftBorderMat[0], 1000000, 0, 21000000, 10000000},
        {portrait->leftBorderMat[5], 1000000, 0, 6802710, 9510},
        {portrait->rightBorderMat[0], 1000000, 0, -5000000, -1117273},
        {portrait->rightBorderMat[5], 1000000, 0, -5000000, -4000000},
    };
    for (const auto& [entry, c, s, x, y] : cases) {
        const int expected[] = {c, -s, 0, s, c, 0, x, y, 1000000};
        for (int i = 0; i < 9; ++i)
            EXPECT_NEAR(entry[i], expected[i], 1) << "translation " << x << " element " << i;
    }
}

TEST(MotionRecord, GivesEachRenderedFrameTheNextTransform) {
    auto transforms = sweeps::handHeld();
    transforms[0] = {1, 1, 0};  // so that no frame has the identity
    constexpr int count = 12;
    constexpr int kUntouched = count + 1;
    auto stabilizer = sweeps::smoothed(transforms, kWidth, kHeight);
    auto whole = sweeps::record(kWidth, kHeight, count + 1);
    stabilizer.getStabilizationInfo(whole.get(), true);
    const struct {
        int frames, first, last;
        std::vector<int> notRendered;
        bool identityForInvalid;
        std::vector<int> expected;
    } cases[] = {
        // The last frame is never visited: it repeats the last rendered one.
        {1, 0, 1, {}, true, {kUntouched}},
        {5, 0, 5, {}, true, {0, 1, 2, 3, 3}},
        {6, 0, 6, {1, 3}, true, {0, kInvalid, 1, kInvalid, 2, 2}},
        {6, 0, 6, {1, 3}, false, {0, 1, 2, 3, 4, 4}},
        {6, 2, 3, {}, true, {kInvalid, kInvalid, 0, 1, kInvalid, 1}},
        {4, 0, 4, {0, 1, 2}, true, {kInvalid, kInvalid, kInvalid, kInvalid}},
        // More rendered frames than transforms: the last transform goes on.
        {count + 4, 0, count + 4, {}, true, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 11, 11, 11, 11}},
    };
    for (const auto& c : cases) {
        auto record = sweeps::record(kWidth, kHeight, c.frames);
        record->startIndex = c.first;
        record->endIndex = c.last;
        for (int frame : c.notRendered)
            record->renderFlag[frame] = 0;
        fake_platform::clearLog();
        EXPECT_EQ(stabilizer.getStabilizationInfo(record.get(), c.identityForInvalid), 0);
        EXPECT_EQ(sources(*record, *whole), c.expected) << "case " << &c - cases;
        EXPECT_EQ(fake_platform::countLog("getStabilizationInfo : Last Valid Frame transformation "
                                          "copied from previous valid frame "),
                  std::max(0, c.frames - 1 - count));
    }
}

TEST(MotionRecord, WithoutAMotionHoldsIdentitiesAndTheFrame) {
    const auto expectIdentities = [](cKalmanFilterStabilization stabilizer, int borderFrames) {
        auto record = sweeps::record(kWidth, kHeight, 3);
        record->leftBorderFrames = record->rightBorderFrames = 4;
        EXPECT_EQ(stabilizer.getStabilizationInfo(record.get(), true), 0);
        for (int i = 0; i < 3; ++i)
            EXPECT_THAT(record->renderMat[i], ElementsAreArray(kIdentity));
        EXPECT_THAT(record->renderMat[3], Each(0));
        EXPECT_THAT(record->cropParam, ElementsAre(0, 0, 639, 359));
        EXPECT_EQ(record->leftBorderFrames, borderFrames);
        EXPECT_EQ(record->rightBorderFrames, borderFrames);
    };
    expectIdentities(sweeps::fed({}, kWidth, kHeight), 4);  // which are not written at all
    expectIdentities(sweeps::smoothed({{30, -20, .1}}, kWidth, kHeight), 0);
    expectIdentities(sweeps::fed(sweeps::handHeld(), kWidth, kHeight), 0);  // never smoothed
}

TEST(MotionRecord, SaysWhatItDerivesInOrder) {
    // Without correction the smoothed path is 0, 0, 12 by 0, 0, -6, the crop 999 x 499. Lines:
    // x = 6 k - 2, y = -3 k + 1. Before: x limited to the far margin -1, y 19 to 4 of the span 19
    // to 0 onto -1 to 0. After: x 34 to 64 less 12, limited to the near margin 0; y onto 0 to 0.
    auto stabilizer = sweeps::smoothed({{0, 0, 0}, {12, -6, 0}, {12, -6, 0}}, 1000, 500, false);
    auto record = sweeps::record(1000, 500, 2);
    record->orientation = 90;
    fake_platform::clearLog();
    stabilizer.getStabilizationInfo(record.get(), true);
    auto said = fake_platform::logTexts("ORBITWALK_ENGINE KALMAN_STABILIZATION");
    EXPECT_EQ(std::erase_if(said,
                            [](const std::string& text) {
                                return testing::Matches(
                                    testing::ContainsRegex("Duplicate Frame [1-4]:"))(text);
                            }),
              16u);
    test_support::expectTranscript(said, "stabilizer-record");
}

TEST(MotionRecord, IsLimitedToItsArrays) {
    for (int frames :
         {-1, 0, 1001, 1000000, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        for (bool positions : {false, true}) {
            auto stabilizer = positions ? sweeps::smoothed(sweeps::steady(12, 5), kWidth, kHeight)
                                        : sweeps::fed({}, kWidth, kHeight);
            auto record = sweeps::record(kWidth, kHeight, frames);
            record->endIndex = std::numeric_limits<int>::max();
            record->width = record->height = std::numeric_limits<int>::min();
            EXPECT_EQ(stabilizer.getStabilizationInfo(record.get(), true), 0);
            EXPECT_THAT(record->reserved, Each(0));
            EXPECT_EQ(record->renderMat[999][8] != 0, frames > 1000) << frames;
        }
    }
}

}  // namespace
