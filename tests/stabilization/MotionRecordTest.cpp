#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "Captures.h"
#include "stabilization/BorderFrames.h"
#include "stabilization/CameraPath.h"
#include "stabilization/FeedbackSearch.h"
#include "stabilization/GaussianSmoothing.h"
#include "stabilization/RenderMatrix.h"
#include "support/FakePlatform.h"

using namespace stabilization;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 360;
constexpr int kInvalid = -7;

/// Render matrix of every frame of the sweep, from the computations alone.
std::vector<FixedMatrix> matricesOf(const std::vector<Trajectory>& transforms) {
    const auto path = rebuildPath(transforms);
    const auto gaussian = gaussianSmooth(path, kGaussianRadius);
    const SmoothingInput input{transforms, path, gaussian, {kWidth, kHeight}};
    const auto smooth = smoothWithFeedback(input, kFeedbackSteps, true);
    EXPECT_TRUE(smooth.step.has_value());
    std::vector<FixedMatrix> matrices;
    for (const Trajectory& t : correctTransforms(transforms, path, smooth.smoothPath).transforms)
        matrices.push_back(renderMatrix(rigidMatrix(t)));
    return matrices;
}

/// Which of the sweep's matrices each frame of the record has; kInvalid for the identity.
std::vector<int> sources(const __kelOBWKDXMetaData& record,
                         const std::vector<FixedMatrix>& matrices) {
    std::vector<int> found;
    for (int i = 0; i < record.numFrames; ++i) {
        FixedMatrix entry;
        std::copy_n(record.renderMat[i], 9, entry.begin());
        const auto at = std::find(matrices.begin(), matrices.end(), entry);
        found.push_back(entry == kIdentityMatrix ? kInvalid
                                                 : static_cast<int>(at - matrices.begin()));
    }
    return found;
}

void expectInvertible(const std::int32_t (&m)[9], int frame) {
    const double determinant = (double(m[0]) * m[4] - double(m[1]) * m[3]) / 1e12;
    EXPECT_NEAR(determinant, 1, 1e-4) << "frame " << frame;
    EXPECT_NEAR(m[8], 1000000, 1) << "frame " << frame;
}

TEST(MotionRecord, GivesEachRenderedFrameTheNextTransform) {
    auto transforms = sweeps::handHeld();
    transforms[0] = {1, 1, 0};  // so that no frame has the identity
    const auto matrices = matricesOf(transforms);
    const int count = static_cast<int>(transforms.size());
    const struct {
        int frames, first, last;
        std::vector<int> notRendered;
        bool identityForInvalid;
        std::vector<int> expected;
    } cases[] = {
        // The last frame is never visited: it repeats the last rendered one.
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
        auto stabilizer = sweeps::smoothed(transforms, kWidth, kHeight);
        EXPECT_EQ(stabilizer->getStabilizationInfo(record.get(), c.identityForInvalid), 0);
        EXPECT_EQ(sources(*record, matrices), c.expected) << "case " << &c - cases;
        EXPECT_EQ(record->matrixRows, 3);
        EXPECT_EQ(record->matrixCols, 3);
        EXPECT_EQ(fake_platform::countLog("getStabilizationInfo : Last Valid Frame transformation "
                                          "copied from previous valid frame "),
                  std::max(0, c.frames - 1 - count));
    }
}

TEST(MotionRecord, OfOneRecordedFrameChangesCropAndBordersAlone) {
    auto record = sweeps::record(kWidth, kHeight, 1);
    record->renderMat[0][0] = 1234;
    auto stabilizer = sweeps::smoothed(sweeps::steady(12, 5), kWidth, kHeight);
    EXPECT_EQ(stabilizer->getStabilizationInfo(record.get(), true), 0);
    EXPECT_THAT(record->renderMat[0], ElementsAre(1234, 0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_GT(record->cropParam[2], 0);
    EXPECT_EQ(record->leftBorderFrames, 6);
}

TEST(MotionRecord, WithoutPositionsHoldsIdentitiesAndTheFrame) {
    auto stabilizer = sweeps::initialized(kWidth, kHeight);
    auto record = sweeps::record(kWidth, kHeight, 3);
    record->leftBorderFrames = record->rightBorderFrames = 4;
    EXPECT_EQ(stabilizer->getStabilizationInfo(record.get(), true), 0);
    for (int i = 0; i < 3; ++i)
        EXPECT_THAT(record->renderMat[i], ElementsAreArray(kIdentityMatrix));
    EXPECT_THAT(record->renderMat[3], testing::Each(0));
    EXPECT_THAT(record->cropParam, ElementsAre(0, 0, 639, 359));
    EXPECT_EQ(record->leftBorderFrames, 4) << "nothing else is written";
}

TEST(MotionRecord, OfOnePositionHasNoCorrectionAndNoBorderFrames) {
    auto record = sweeps::record(kWidth, kHeight, 3);
    record->leftBorderFrames = 9;
    auto stabilizer = sweeps::smoothed({{30, -20, .1}}, kWidth, kHeight);
    EXPECT_EQ(stabilizer->getStabilizationInfo(record.get(), true), 0);
    for (int i = 0; i < 3; ++i)
        EXPECT_THAT(record->renderMat[i], ElementsAreArray(kIdentityMatrix));
    EXPECT_THAT(record->cropParam, ElementsAre(0, 0, 639, 359));
    EXPECT_EQ(record->leftBorderFrames, 0);
    EXPECT_EQ(record->rightBorderFrames, 0);
}

TEST(MotionRecord, HoldsSixBorderFramesASideThatReachTheCropMargins) {
    // A sweep of 20 px/frame in a frame of 1000 x 500 has the crop 12 to 846 by 41 to 458: in
    // landscape from left to right the frames before start at minX = 12, those after end at
    // 846 - 1000. The written translation is the inverse.
    auto record = sweeps::record(1000, 500, 40);
    auto stabilizer = sweeps::smoothed(sweeps::steady(40, 20), 1000, 500);
    EXPECT_EQ(stabilizer->getStabilizationInfo(record.get(), true), 0);
    EXPECT_EQ(record->leftBorderFrames, 6);
    EXPECT_EQ(record->rightBorderFrames, 6);
    EXPECT_NEAR(record->leftBorderMat[0][6], -12 * 1000000, 1);
    EXPECT_NEAR(record->rightBorderMat[5][6], 154 * 1000000, 20);  // a float's last place
    for (int i = 0; i < 6; ++i) {
        expectInvertible(record->leftBorderMat[i], i);
        expectInvertible(record->rightBorderMat[i], i);
    }
    EXPECT_THAT(record->leftBorderMat[6], testing::Each(0));
    EXPECT_THAT(record->cropParam, ElementsAre(12, 41, 834, 417));
}

TEST(MotionRecord, SaysItsLastStretchInOrder) {
    auto record = sweeps::record(1920, 1080, 2);
    record->orientation = 45;
    auto stabilizer = sweeps::smoothed(std::vector<Trajectory>(2), 1920, 1080);
    fake_platform::clearLog();
    stabilizer->getStabilizationInfo(record.get(), true);
    const auto texts = fake_platform::logTexts();
    const std::vector<std::string> head{
        "getStabilizationInfo : Frame[0] is Valid",
        "getStabilizationInfo : RenderCnt  0 and SmoothTransformSize = 2 ",
        "getStabilizationInfo : Frame[0] ValidFrm[0] Trans [1.000000  -0.000000  0.000000  0.000000"
        "  1.000000  0.000000  0.000000  0.000000  1.000000] ",
        "getStabilizationInfo : lastValidFrameIndex = 0, numFrames = 2",
        "getStabilizationInfo : Extrapolation using angles: DISABLED",
        "getStabilizationInfo : X dir: MIN(0, 0) = 0.000000 ",
        "getStabilizationInfo : Y dir: MIN(0, 0) = 0.000000 ",
        "getStabilizationInfo : Capture Direction : 1 ",
        "getStabilizationInfo : Orientation : 45 ",
        "getStabilizationInfo : Flip : 0 ",
        "getStabilizationInfo : Original Frame 0: Val_X = 0.000000 ",
        "getStabilizationInfo : Original Frame 0: Val_Y = 0.000000 ",
        "getStabilizationInfo : FIRST FRAME",
        "getStabilizationInfo : sumkx = 0.000000 sumk = 1.000000 sumx = 0.000000 sumk2 = 1.000000",
    };
    ASSERT_GT(texts.size(), head.size() + 3);
    EXPECT_THAT(std::vector(texts.begin(), texts.begin() + head.size()), ElementsAreArray(head));
    EXPECT_THAT(std::vector(texts.end() - 4, texts.end()),
                ElementsAre("getStabilizationInfo : End: Duplicate Frame 5: Val_Y = 0.000000 ",
                            "getStabilizationInfo : __crossOverPoint = 0 ",
                            "getStabilizationInfo crop smoothing boundaries 0 1920 0 1080",
                            "getStabilizationInfo crop smoothing params 0 0 1920 1080"));
}

TEST(MotionRecord, IsTheSameAfterASecondSmoothing) {
    auto stabilizer = sweeps::smoothed(sweeps::handHeld(), kWidth, kHeight);
    auto once = sweeps::record(kWidth, kHeight, 12);
    auto twice = sweeps::record(kWidth, kHeight, 12);
    stabilizer->getStabilizationInfo(once.get(), true);
    EXPECT_EQ(stabilizer->doStabilization(0, 1, 0, 0, 0, 0, true), 0);
    stabilizer->getStabilizationInfo(twice.get(), true);
    EXPECT_EQ(std::memcmp(once.get(), twice.get(), sizeof *once), 0);
}

TEST(MotionRecord, IsLimitedToItsArrays) {
    for (int frames :
         {-1, 0, 1001, 1000000, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        for (bool positions : {false, true}) {
            auto stabilizer = positions ? sweeps::smoothed(sweeps::steady(12, 5), kWidth, kHeight)
                                        : sweeps::initialized(kWidth, kHeight);
            auto record = sweeps::record(kWidth, kHeight, frames);
            record->endIndex = std::numeric_limits<int>::max();
            record->width = record->height = std::numeric_limits<int>::min();
            EXPECT_EQ(stabilizer->getStabilizationInfo(record.get(), true), 0);
            EXPECT_THAT(record->reserved, testing::Each(0));
            EXPECT_EQ(record->renderMat[999][8] != 0, frames > 1000) << frames;
        }
    }
}

TEST(MotionRecord, IsInvertibleWhateverThePositionsWere) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (double hostile : {std::nan(""), infinity, -infinity, 1e9, -1e30, 1e308}) {
        for (int orientation : {0, 90, 180, 270, 45}) {
            auto stabilizer = sweeps::initialized(kWidth, kHeight);
            sweeps::send(*stabilizer, sweeps::handHeld());
            stabilizer->sendTransformationMatrix(hostile, -hostile, hostile);
            stabilizer->sendTransformationMatrix(100, 3, 0);
            EXPECT_EQ(stabilizer->doStabilization(0, 1, 0, 0, 0, 0, true), 0);
            auto record = sweeps::record(kWidth, kHeight, 15);
            record->orientation = orientation;
            EXPECT_EQ(stabilizer->getStabilizationInfo(record.get(), true), 0);
            for (int i = 0; i < 15; ++i)
                expectInvertible(record->renderMat[i], i);
            for (int i = 0; i < 6; ++i) {
                expectInvertible(record->leftBorderMat[i], i);
                expectInvertible(record->rightBorderMat[i], i);
            }
        }
    }
}

TEST(MotionRecord, WithoutSmoothingHoldsIdentities) {
    auto stabilizer = sweeps::initialized(kWidth, kHeight);
    sweeps::send(*stabilizer, sweeps::handHeld());
    auto record = sweeps::record(kWidth, kHeight, 12);
    EXPECT_EQ(stabilizer->getStabilizationInfo(record.get(), true), 0);
    EXPECT_THAT(record->renderMat[11], ElementsAreArray(kIdentityMatrix));
}

}  // namespace
