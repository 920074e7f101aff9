#pragma once

#include <memory>
#include <vector>

#include "Sweeps.h"
#include "orbitwalk/MetaData.h"
#include "stabilization/iVideoStabilization.h"

/// Stabilisers that were led through a capture, and records for them to fill.
namespace sweeps {

struct Destroyer {
    void operator()(iVideoStabilization* stabilizer) const {
        iVideoStabilization::Destroy(stabilizer);
    }
};
using Stabilizer = std::unique_ptr<iVideoStabilization, Destroyer>;

inline Stabilizer initialized(int width, int height) {
    Stabilizer stabilizer(iVideoStabilization::Create());
    stabilizer->Initialize(width, height);
    return stabilizer;
}

/// Sends the cumulative positions of the transforms.
inline void send(iVideoStabilization& stabilizer, const std::vector<Trajectory>& transforms) {
    Trajectory position;
    for (const Trajectory& transform : transforms) {
        position += transform;
        stabilizer.sendTransformationMatrix(position.x, position.y, position.a);
    }
}

inline Stabilizer smoothed(const std::vector<Trajectory>& transforms, int width, int height,
                           bool feedback = true) {
    Stabilizer stabilizer = initialized(width, height);
    send(*stabilizer, transforms);
    stabilizer->doStabilization(0, 1, 0, 0, 0, 0, feedback);
    return stabilizer;
}

/// A zeroed record whose frames are all to be rendered.
inline std::unique_ptr<__kelOBWKDXMetaData> record(int width, int height, int frames) {
    auto record = std::make_unique<__kelOBWKDXMetaData>();
    record->width = width;
    record->height = height;
    record->numFrames = frames;
    record->endIndex = frames;
    record->captureDirection = 1;
    for (int& flag : record->renderFlag)
        flag = 1;
    return record;
}

}  // namespace sweeps
