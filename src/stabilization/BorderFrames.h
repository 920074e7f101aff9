#pragma once

#include <array>
#include <optional>
#include <span>

#include "orbitwalk/Geometry.h"
#include "stabilization/CropBounds.h"

/// Frames added before and after a sweep, so that the view angle reaches the frame's edge: copies
/// of the first and last frame whose offsets continue the smoothed path. Across the sweep the
/// offset is limited to the crop margins; along the sweep it is stretched to end exactly at a
/// margin. All in single precision.
namespace orbitwalk {

/// Straight line over the abscissas 0, 1, 2, ... with the sums it was fitted from.
struct LineFit {
    float sumK = 0;
    float sumK2 = 0;
    float sumX = 0;
    float sumKX = 0;
    float slopeNumerator = 0;
    float slopeDenominator = 0;
    float slope = 0;
    float intercept = 0;

    float at(int k) const { return intercept + slope * static_cast<float>(k); }
};

/// Least-squares line through one axis of path points, oldest first, all in single precision. The
/// oldest point is truncated to whole pixels first.
/// @param points  at least two; fewer have no slope and give values that are not numbers.
LineFit fitLine(std::span<const Trajectory> points, double Trajectory::*axis);

inline constexpr int kBorderFrames = 6;
/// Smoothed points that the continuation is fitted to.
inline constexpr std::size_t kFittedPoints = 6;

using BorderValues = std::array<float, kBorderFrames>;

struct BorderGeometry {
    FrameSize size;
    CropBounds crop;
    int orientation = 0;       ///< Degrees: 0, 180 landscape; 90, 270 portrait.
    int captureDirection = 0;  ///< 1 left to right, 2 right to left.
    int flip = 0;              ///< 1: the preview is mirrored.

    bool isPortrait() const { return orientation == 90 || orientation == 270; }
    bool isLandscape() const { return orientation == 0 || orientation == 180; }
};

/// Linear map of the span [oldStart, oldEnd] onto [newStart, newEnd].
struct Remap {
    float oldStart = 0;
    float oldEnd = 0;
    float newStart = 0;
    float newEnd = 0;

    /// @param anchor  result when the old span is empty.
    float map(float value, float anchor) const;
};

/// Offsets of one side's frames, and what they were derived from.
struct BorderFit {
    LineFit lineX;
    LineFit lineY;
    BorderValues extrapolatedX{};  ///< Away from the sweep: nearest frame first.
    BorderValues extrapolatedY{};
    Remap remap;       ///< Of y in portrait, of x in landscape.
    BorderValues x{};  ///< In the order in which the frames are shown; zero for an orientation
    BorderValues y{};  ///< that is neither portrait nor landscape.
};

/// Margin that the frames before (atStart) or after the sweep are fitted to: the low margin of the
/// axis along the sweep (minX, minY) or minus its high one (maxX - width, maxY - height). None for
/// a direction other than 1 and 2, a flip other than 0 and 1, or another orientation; then the
/// frames stay at the offset where they join the sweep.
std::optional<float> borderMargin(const BorderGeometry& geometry, bool atStart);

/// Six frames before the sweep, farthest first.
/// @param smoothPath  at least two points.
BorderFit fitStartFrames(std::span<const Trajectory> smoothPath, const BorderGeometry& geometry);

/// Six frames after the sweep, nearest first.
/// @param lastTransform  corrected transform of the last frame: where the frames join the sweep.
BorderFit fitEndFrames(std::span<const Trajectory> smoothPath, const Trajectory& lastTransform,
                       const BorderGeometry& geometry);

}  // namespace orbitwalk
