#pragma once

#include <cmath>

#include "orbitwalk/Geometry.h"
#include "orbitwalk/RenderMatrix.h"

namespace orbitwalk::tool {

/// A map between two pictures' coordinates, each with (0, 0) at the centre of its top left pixel:
/// x' = xx x + xy y + x0, y' = yx x + yy y + y0.
struct Affine {
    double xx = 1;
    double xy = 0;
    double x0 = 0;
    double yx = 0;
    double yy = 1;
    double y0 = 0;

    PicturePoint operator()(PicturePoint p) const {
        return {xx * p.x + xy * p.y + x0, yx * p.x + yy * p.y + y0};
    }
};

/// The right map first, then the left one.
inline Affine operator*(const Affine& outer, const Affine& inner) {
    const PicturePoint origin = outer({inner.x0, inner.y0});
    return {outer.xx * inner.xx + outer.xy * inner.yx,
            outer.xx * inner.xy + outer.xy * inner.yy,
            origin.x,
            outer.yx * inner.xx + outer.yy * inner.yx,
            outer.yx * inner.xy + outer.yy * inner.yy,
            origin.y};
}

/// @param map  with a determinant other than 0.
inline Affine inverse(const Affine& map) {
    const double det = map.xx * map.yy - map.xy * map.yx;
    const Affine linear{map.yy / det, -map.xy / det, 0, -map.yx / det, map.xx / det, 0};
    const PicturePoint origin = linear({map.x0, map.y0});
    return {linear.xx, linear.xy, -origin.x, linear.yx, linear.yy, -origin.y};
}

/// Pixels of a picture to those of one that shows it enlarged by the factors: edges on edges, so
/// that the centre of the top left pixel moves by half a pixel's growth.
inline Affine enlargement(double factorX, double factorY) {
    return {factorX, 0, (factorX - 1) / 2, 0, factorY, (factorY - 1) / 2};
}

inline Affine translation(double x, double y) {
    return {1, 0, x, 0, 1, y};
}

inline Affine affineOf(const SimilarityTransform& map) {
    const PicturePoint origin = map({0, 0});
    const PicturePoint xAxis = map.linear({1, 0});
    return {xAxis.x, -xAxis.y, origin.x, xAxis.y, xAxis.x, origin.y};
}

/// @param map  that turns, scales and moves, and does nothing else.
inline SimilarityTransform similarityOf(const Affine& map, PicturePoint about) {
    const PicturePoint shift = map(about) - about;
    return {shift.x, shift.y, std::atan2(map.yx, map.yy), std::log(std::hypot(map.yx, map.yy)),
            about};
}

}  // namespace orbitwalk::tool
