#include <gtest/gtest.h>

#include <cmath>

#include "stabilization/CameraPath.h"

using namespace orbitwalk;

namespace {

TEST(CameraPath, CorrectsByTheWayToTheSmoothedPath) {
    const std::vector<Trajectory> transforms{{5, -1, .5}, {2, 3, -.25}, {0, 0, 0}};
    const auto path = rebuildPath(transforms);
    EXPECT_EQ(path, (std::vector<Trajectory>{{5, -1, .5}, {7, 2, .25}, {7, 2, .25}}));
    EXPECT_EQ(pathOneFrameLate(path, transforms),
              (std::vector<Trajectory>{{0, 0, 0}, {5, -1, .5}, {7, 2, .25}}));
    const std::vector<Trajectory> smooth{{4, 1, .5}, {7, 2, .5}, {7, 0, .25}};
    EXPECT_EQ(correctTransforms(transforms, path, smooth).transforms,
              (std::vector<Trajectory>{{4, 1, .5}, {2, 3, 0}, {0, -2, 0}}));
}

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

TEST(GaussianSmoothing, WeighsTwoPointsByExpMinusTwo) {
    // Radius 1, sigma 1/2. Beyond the ends lie the reflections -10 and 20.
    const double w = std::exp(-2.0);
    const auto smooth = gaussianSmooth(std::vector<Trajectory>{{}, {10, 0, 0}}, 10);
    ASSERT_EQ(smooth.size(), 2u);
    EXPECT_DOUBLE_EQ(smooth[0].x, (w * -10 + 0 + w * 10) / (1 + 2 * w));
    EXPECT_DOUBLE_EQ(smooth[1].x, (w * 0 + 10 + w * 20) / (1 + 2 * w));
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

}  // namespace
