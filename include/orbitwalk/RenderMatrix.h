#pragma once

/// @file
/// A render matrix of the motion record, as a map between the output picture and a frame.
///
/// Coordinates are pixels of the full-size picture, x to the right, y down, (0, 0) the centre of
/// the top left pixel. The output picture has the size of the frame; a player shows the part of it
/// that the crop rectangle covers. docs/record.md draws the convention.

#include <array>
#include <cmath>
#include <cstdint>

#include "orbitwalk/Geometry.h"

namespace orbitwalk {

/// A written matrix W, decoded. It acts on row vectors of output coordinates,
/// [x y 1]_frame = [x y 1]_output * W, and its third column is (0, 0, 1).
class RenderMatrix {
  public:
    /// The identity: the output picture is the frame.
    RenderMatrix() = default;
    /// @param fixedPoint  nine elements of a record, row-major, times 1000000.
    explicit RenderMatrix(const std::int32_t (&fixedPoint)[9]) {
        constexpr std::array<int, 6> affine{0, 1, 3, 4, 6, 7};
        for (const int i : affine)
            mElements[i] = fixedPoint[i] / 1e6;
    }

    /// Row-major.
    const std::array<double, 9>& elements() const { return mElements; }

    /// The point of the frame that the output picture shows at a point.
    PicturePoint frameFromOutput(PicturePoint output) const {
        const auto& w = mElements;
        return {output.x * w[0] + output.y * w[3] + w[6], output.x * w[1] + output.y * w[4] + w[7]};
    }

    /// The point of the output picture that shows a point of the frame. Finite for every matrix of
    /// an opened record.
    PicturePoint outputFromFrame(PicturePoint frame) const {
        const auto& w = mElements;
        const double x = frame.x - w[6];
        const double y = frame.y - w[7];
        const double det = determinant();
        return {(x * w[4] - y * w[3]) / det, (y * w[0] - x * w[1]) / det};
    }

    /// Rotation in radians, positive from x to y (clockwise on the screen), by which the frame is
    /// turned in the output picture. The same before and after flipWarpMatrix.
    double angle() const { return std::atan2(-mElements[1], mElements[4]); }

    /// 1 for a rotation, -1 for a rotation that flipWarpMatrix has mirrored.
    double determinant() const { return mElements[0] * mElements[4] - mElements[1] * mElements[3]; }
    bool isMirrored() const { return determinant() < 0; }

  private:
    std::array<double, 9> mElements{1, 0, 0, 0, 1, 0, 0, 0, 1};
};

}  // namespace orbitwalk
