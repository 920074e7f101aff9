#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stabilization/BorderFrames.h"

using namespace orbitwalk;
using testing::Each;
using testing::ElementsAre;

namespace {

constexpr int kWidth = 1000;
constexpr int kHeight = 500;
// Margins: minX 36, maxX - width -48, minY 21, maxY - height -27.
constexpr CropBounds kCrop{36, 952, 21, 473};

BorderGeometry geometry(int orientation, int direction, int flip) {
    return {{kWidth, kHeight}, kCrop, orientation, direction, flip};
}

/// Points (dx k, dy k).
std::vector<Trajectory> line(int points, double dx, double dy) {
    std::vector<Trajectory> path;
    for (int k = 0; k < points; ++k)
        path.push_back({dx * k, dy * k, 0.1});
    return path;
}

TEST(BorderFrames, ReachTheMarginOfTheirOrientationDirectionAndFlip) {
    constexpr float minX = 36, farX = -48, minY = 21, farY = -27;
    const struct {
        int orientation, direction, flip;
        float start, end;
    } cases[] = {
        {90, 1, 0, farY, minY},  {90, 1, 1, minY, farY},  {90, 2, 0, minY, farY},
        {90, 2, 1, farY, minY},  {270, 1, 0, minY, farY}, {270, 1, 1, farY, minY},
        {270, 2, 0, farY, minY}, {270, 2, 1, minY, farY}, {0, 1, 0, minX, farX},
        {0, 1, 1, farX, minX},   {0, 2, 0, farX, minX},   {0, 2, 1, minX, farX},
        {180, 1, 0, farX, minX}, {180, 1, 1, minX, farX}, {180, 2, 0, minX, farX},
        {180, 2, 1, farX, minX},
    };
    const auto path = line(8, 10, 6);
    for (const auto& c : cases) {
        const BorderGeometry g = geometry(c.orientation, c.direction, c.flip);
        const bool portrait = c.orientation % 180 != 0;
        const BorderFit start = fitStartFrames(path, g);
        const BorderFit end = fitEndFrames(path, {6, 6, 0}, g);
        const auto label = testing::PrintToString(std::array{c.orientation, c.direction, c.flip});
        EXPECT_EQ(portrait ? start.y.front() : start.x.front(), c.start) << label;
        EXPECT_FLOAT_EQ(portrait ? end.y.back() : end.x.back(), c.end) << label;
    }
}

TEST(BorderFrames, LandscapeStretchesXAndLimitsY) {
    // Fitted x 10 k, y 6 k. Before: x -60 to 0 onto 36 to 0, y -36 to -6 within -27 (500 - 473).
    const auto path = line(8, 10, 6);
    const BorderFit start = fitStartFrames(path, geometry(0, 1, 0));
    EXPECT_THAT(start.extrapolatedX, ElementsAre(-10, -20, -30, -40, -50, -60));
    EXPECT_THAT(start.x, ElementsAre(36, 30, 24, 18, 12, 6));
    EXPECT_THAT(start.y, ElementsAre(-27, -27, -24, -18, -12, -6));
    // After: the window's oldest point is k = 2, so x 80 to 130 with 70 last, onto 6 to -48; y 48
    // to 78 less 42, within 21.
    const BorderFit end = fitEndFrames(path, {6, 5, 0}, geometry(0, 1, 0));
    EXPECT_THAT(end.extrapolatedX, ElementsAre(80, 90, 100, 110, 120, 130));
    EXPECT_THAT(end.x, ElementsAre(-3, -12, -21, -30, -39, -48));
    EXPECT_THAT(end.y, ElementsAre(6, 12, 18, 21, 21, 21));
    // In portrait x 80 to 130 less 70, within 36.
    EXPECT_THAT(fitEndFrames(path, {6, 5, 0}, geometry(90, 1, 0)).x,
                ElementsAre(10, 20, 30, 36, 36, 36));
}

TEST(BorderFrames, TheFirstPointAnchorsTheirStartInWholePixels) {
    const std::vector<Trajectory> path(6, {7.9, -7.9, 0});
    EXPECT_EQ(fitStartFrames(path, geometry(0, 1, 0)).remap.oldEnd, 7.0f);
    EXPECT_EQ(fitStartFrames(path, geometry(90, 1, 0)).remap.newEnd, -7.0f);
}

TEST(BorderFrames, AnEmptySpanKeepsTheAnchor) {
    const std::vector<Trajectory> still(6, {5, 5, 0});
    EXPECT_THAT(fitStartFrames(still, geometry(0, 1, 0)).x, Each(5));
    EXPECT_THAT(fitEndFrames(still, {3, 4, 0}, geometry(0, 1, 0)).x, Each(3));
    EXPECT_THAT(fitEndFrames(still, {3, 4, 0}, geometry(270, 1, 0)).y, Each(4));
}

TEST(BorderFrames, WithoutAMarginStayWhereTheyJoinTheSweep) {
    auto path = line(8, 10, 6);
    path[0].x = 2;
    for (const BorderGeometry& g : {geometry(0, 3, 0), geometry(0, 4, 1), geometry(180, 1, 2)}) {
        EXPECT_EQ(fitStartFrames(path, g).remap.oldStart, 0);
        EXPECT_THAT(fitStartFrames(path, g).x, Each(2));
        EXPECT_THAT(fitEndFrames(path, {6, 5, 0}, g).x, Each(6));
    }
}

TEST(BorderFrames, HaveNoOffsetInAnyOtherOrientation) {
    for (int orientation : {45, 360, -90, 1}) {
        const BorderFit start = fitStartFrames(line(8, 10, 6), geometry(orientation, 1, 0));
        const BorderFit end = fitEndFrames(line(8, 10, 6), {6, 5, 0}, geometry(orientation, 1, 0));
        for (const BorderValues& values : {start.x, start.y, end.x, end.y})
            EXPECT_THAT(values, Each(0));
    }
}

}  // namespace
