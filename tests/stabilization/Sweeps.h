#pragma once

#include <vector>

#include "common/Trajectory.h"

/// Camera paths that several tests share.
namespace sweeps {

/// Frame-to-frame transforms: one still frame, then a steady sweep to the right.
inline std::vector<Trajectory> steady(int frames, double pixelsPerFrame) {
    std::vector<Trajectory> transforms(frames, {pixelsPerFrame, 0, 0});
    transforms[0] = {};
    return transforms;
}

/// A hand-held sweep of twelve frames, with shake and roll.
inline std::vector<Trajectory> handHeld() {
    return {{0, 0, 0}, {8, 1, .001},   {11, -2, -.002}, {9, 1, .003},
            {7, 0, 0}, {12, 2, -.004}, {10, -1, .001},  {9, -2, .002},
            {8, 1, 0}, {11, 1, -.001}, {9, 0, .002},    {10, -1, 0}};
}

}  // namespace sweeps
