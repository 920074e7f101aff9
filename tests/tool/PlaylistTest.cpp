#include "sweep/Playlist.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/SampleRecord.h"

namespace orbitwalk::tool {
namespace {

/// 1280x720, two frames; frame 0 is moved by (10, -4), the crop is 640x360 from (100, 50).
__kelOBWKDXMetaData movedRecord() {
    auto record = sampleRecord();
    record.numFrames = 2;
    record.startIndex = 0;
    record.endIndex = 1;
    const std::int32_t crop[4] = {100, 50, 640, 360};
    const std::int32_t moved[9] = {1000000, 0, 0, 0, 1000000, 0, -10000000, 4000000, 1000000};
    std::ranges::copy(crop, record.cropParam);
    std::ranges::copy(moved, record.renderMat[0]);
    return record;
}

Affine shownOf(const __kelOBWKDXMetaData& record) {
    return playlist(opened(record), false).front().frameFromOutput;
}

void expectPoint(PicturePoint point, double x, double y) {
    EXPECT_NEAR(point.x, x, 1e-9);
    EXPECT_NEAR(point.y, y, 1e-9);
}

TEST(Playlist, ShowsBorderFramesAroundTheRenderedFrames) {
    const auto shots = playlist(opened(sampleRecord()));
    std::vector<std::pair<int, ShotKind>> shown;
    for (const Shot& shot : shots)
        shown.emplace_back(shot.frame, shot.kind);
    std::vector<std::pair<int, ShotKind>> expected(6, {2, ShotKind::LeftBorder});
    for (const int frame : {2, 3, 4, 6, 7, 8, 9})
        expected.emplace_back(frame, ShotKind::Sweep);
    expected.insert(expected.end(), 6, {9, ShotKind::RightBorder});
    EXPECT_EQ(shown, expected);
    // Left border frames move by 38, 33, ... 13 px to the right, right ones by 10, 15, ... left.
    for (const auto& [shot, x] : {std::pair{0, -38}, {5, -13}, {13, 10}, {18, 35}})
        EXPECT_NEAR(shots[shot].frameFromPicture.x0, x, 1e-9) << shot;
}

// An output pixel covers half a picture pixel: the centre of the first lies a quarter to the left
// of the crop's first column's centre.
TEST(Playlist, ScalesTheCropToTheFrame) {
    const Affine map = shownOf(movedRecord());
    expectPoint(map({0, 0}), 99.75 - 10, 49.75 + 4);
    expectPoint(map({1279, 719}), 739.25 - 10, 409.25 + 4);
}

TEST(Playlist, MirrorsTheOutputAndNotTheCorrection) {
    auto record = movedRecord();
    record.frontCameraFlipped = 1;
    const Affine map = shownOf(record);
    expectPoint(map({0, 0}), 739.25 - 10, 49.75 + 4);
    expectPoint(map({1279, 719}), 99.75 - 10, 409.25 + 4);
    expectPoint(uncorrected(opened(record))({0, 7}), 1279, 7);
}

}  // namespace
}  // namespace orbitwalk::tool
