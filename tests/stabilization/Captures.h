#pragma once

#include <memory>
#include <vector>

#include "Sweeps.h"
#include "orbitwalk/MetaData.h"
#include "stabilization/CameraPath.h"
#include "stabilization/cKalmanFilterStabilization.h"

/// Stabilisers that were led through a capture, and records for them to fill.
namespace sweeps {

/// Has the cumulative positions of the transforms.
inline cKalmanFilterStabilization fed(const std::vector<orbitwalk::Trajectory>& transforms,
                                      int width, int height) {
    cKalmanFilterStabilization stabilizer;
    stabilizer.Initialize(width, height);
    for (const orbitwalk::Trajectory& position : orbitwalk::rebuildPath(transforms))
        stabilizer.sendTransformationMatrix(position.x, position.y, position.a);
    return stabilizer;
}

inline cKalmanFilterStabilization smoothed(const std::vector<orbitwalk::Trajectory>& transforms,
                                           int width, int height, bool feedback = true) {
    cKalmanFilterStabilization stabilizer = fed(transforms, width, height);
    stabilizer.doStabilization(0, 1, 0, 0, 0, 0, feedback);
    return stabilizer;
}

/// A zeroed record whose frames are all to be rendered.
inline std::unique_ptr<__kelOBWKDXMetaData> record(int width, int height, int frames) {
    auto record = std::make_unique<__kelOBWKDXMetaData>();
    record->width = width;
    record->height = height;
    record->numFrames = record->endIndex = frames;
    record->captureDirection = 1;
    for (int& flag : record->renderFlag)
        flag = 1;
    return record;
}

}  // namespace sweeps
