#pragma once

/// Offset along the frame's width and height in pixels of the full-size frame (x right, y down) and
/// rotation in radians. Serves for a frame-to-frame motion and for a cumulative position alike.
struct Trajectory {
    double x = 0;
    double y = 0;
    double a = 0;

    friend Trajectory operator+(const Trajectory& p, const Trajectory& q) {
        return {p.x + q.x, p.y + q.y, p.a + q.a};
    }
    friend Trajectory operator-(const Trajectory& p, const Trajectory& q) {
        return {p.x - q.x, p.y - q.y, p.a - q.a};
    }
    Trajectory& operator+=(const Trajectory& q) { return *this = *this + q; }
    friend bool operator==(const Trajectory&, const Trajectory&) = default;
};
