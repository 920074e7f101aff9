#pragma once

/// @file
/// The value types of the plane that engine, readers and tools share. Header only.
///
/// Conventions. Coordinates are pixels of the full-size frame, x to the right, y down, (0, 0) the
/// centre of the top left pixel; a positive angle, in radians, turns x towards y (clockwise on the
/// screen). Motions are those of the picture, not of the camera. All are pure values: no locks, no
/// allocation, usable on any thread.

#include <cmath>

namespace orbitwalk {

/// Offset along the frame's width and height and rotation. Serves for a frame-to-frame motion and
/// for a cumulative position alike; sums are taken component by component.
struct Trajectory {
    double x = 0;
    double y = 0;
    double a = 0;  ///< Radians.

    friend Trajectory operator+(const Trajectory& p, const Trajectory& q) {
        return {p.x + q.x, p.y + q.y, p.a + q.a};
    }
    friend Trajectory operator-(const Trajectory& p, const Trajectory& q) {
        return {p.x - q.x, p.y - q.y, p.a - q.a};
    }
    Trajectory& operator+=(const Trajectory& q) { return *this = *this + q; }
    friend bool operator==(const Trajectory&, const Trajectory&) = default;
};

struct FrameSize {
    int width = 0;
    int height = 0;

    friend bool operator==(const FrameSize&, const FrameSize&) = default;
};

/// Pixel columns x to x + width - 1 and rows y to y + height - 1.
struct CropRectangle {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    friend bool operator==(const CropRectangle&, const CropRectangle&) = default;
};

struct PicturePoint {
    double x = 0;
    double y = 0;

    friend PicturePoint operator+(PicturePoint p, PicturePoint q) { return {p.x + q.x, p.y + q.y}; }
    friend PicturePoint operator-(PicturePoint p, PicturePoint q) { return {p.x - q.x, p.y - q.y}; }
    friend bool operator==(const PicturePoint&, const PicturePoint&) = default;
};

/// Middle of a frame: between its two middle pixels where a side is even.
inline PicturePoint frameCentre(FrameSize size) {
    return {(size.width - 1) / 2.0, (size.height - 1) / 2.0};
}

/// The vector turned by an angle about (0, 0).
inline PicturePoint rotated(PicturePoint p, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {c * p.x - s * p.y, s * p.x + c * p.y};
}

/// A shift, a turn and a growth: p' = about + exp(logScale) R(angle) (p - about) + (x, y). The same
/// map has another shift about another point, so the point is part of the value; angle and scale do
/// not depend on it. A rigid motion has logScale 0.
struct SimilarityTransform {
    double x = 0;
    double y = 0;
    double angle = 0;     ///< Radians.
    double logScale = 0;  ///< Natural logarithm of the scale.
    PicturePoint about;

    PicturePoint operator()(PicturePoint p) const {
        return about + linear(p - about) + PicturePoint{x, y};
    }

    /// The turn and growth alone, of a difference of two points.
    PicturePoint linear(PicturePoint difference) const {
        const PicturePoint turned = rotated(difference, angle);
        const double scale = std::exp(logScale);
        return {scale * turned.x, scale * turned.y};
    }

    /// The same map, described about another point.
    SimilarityTransform takenAbout(PicturePoint point) const {
        const PicturePoint shift = (*this)(point)-point;
        return {shift.x, shift.y, angle, logScale, point};
    }

    /// The map back, about the same point.
    SimilarityTransform inverse() const {
        const SimilarityTransform back{0, 0, -angle, -logScale, about};
        const PicturePoint shift = back.linear({x, y});
        return {-shift.x, -shift.y, -angle, -logScale, about};
    }

    friend bool operator==(const SimilarityTransform&, const SimilarityTransform&) = default;
};

/// The right map first, then the left one; about the right one's point.
inline SimilarityTransform operator*(const SimilarityTransform& outer,
                                     const SimilarityTransform& inner) {
    const PicturePoint shift = outer(inner(inner.about)) - inner.about;
    return {shift.x, shift.y, outer.angle + inner.angle, outer.logScale + inner.logScale,
            inner.about};
}

}  // namespace orbitwalk
