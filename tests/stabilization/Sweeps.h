#pragma once

#include <optional>
#include <vector>

#include "orbitwalk/Geometry.h"
#include "stabilization/CropBounds.h"

/// Camera paths that several tests share.
namespace sweeps {

/// Frame-to-frame transforms: one still frame, then a steady sweep to the right.
inline std::vector<orbitwalk::Trajectory> steady(int frames, double pixelsPerFrame) {
    std::vector<orbitwalk::Trajectory> transforms(frames, {pixelsPerFrame, 0, 0});
    transforms[0] = {};
    return transforms;
}

/// A hand-held sweep of twelve frames, with shake and roll.
inline std::vector<orbitwalk::Trajectory> handHeld() {
    return {{0, 0, 0}, {8, 1, .001},   {11, -2, -.002}, {9, 1, .003},
            {7, 0, 0}, {12, 2, -.004}, {10, -1, .001},  {9, -2, .002},
            {8, 1, 0}, {11, 1, -.001}, {9, 0, .002},    {10, -1, 0}};
}

/// Steady sweeps of 40 frames in 1000 x 500 and what the feedback search makes of them. The filter
/// lags a sweep of v px/frame by v (1 - K) / K, half of which the crop pays. Steps and bounds
/// before the aspect fit come from a computation of its own outside this program: 12 to 846, 31 to
/// 810 and 100 to 925 of 1000. The fit then trims top and bottom alike.
inline constexpr struct {
    double speed;
    std::optional<int> step;
    orbitwalk::CropBounds bounds;
} kFeedback[] = {
    {20, 0, {12, 846, 41, 458}},     // 417 high, 83 less than 500
    {50, 4, {31, 810, 55, 444}},     // 389.5, 110.5 less
    {140, 10, {100, 925, 43, 456}},  // 412.5, 87.5 less
    {195, std::nullopt, {0, 999, 0, 499}},
};

}  // namespace sweeps
