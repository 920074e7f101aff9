#pragma once

#include <array>
#include <opencv2/core/types.hpp>
#include <span>

#include "orbitwalk/Geometry.h"

/// Coordinates: pixels of the full-size frame, x right, y down.
namespace orbitwalk {

/// Rectangle that every corrected frame still covers.
struct CropBounds {
    int minX = 0;
    int maxX = 0;
    int minY = 0;
    int maxY = 0;

    friend bool operator==(const CropBounds&, const CropBounds&) = default;
};

/// Bounds that a filter run starts from: 0, width, 0, height.
CropBounds wholeFrame(FrameSize size);

/// Bounds of an uncorrected frame's pixels: 0, width - 1, 0, height - 1.
CropBounds framePixels(FrameSize size);

/// Top left, bottom left, top right, bottom right of the whole frame.
std::array<cv::Point2f, 4> frameCorners(FrameSize size);

/// Intersects the bounds with what a frame covers after its correction, a rotation about the origin
/// followed by the offset. The corners are truncated to whole pixels, saturating; a corner that is
/// not a number counts as 0.
/// @param corners  four, in the order of frameCorners.
CropBounds narrowed(const CropBounds& bounds, std::span<const cv::Point2f> corners,
                    const Trajectory& correction);

/// Whether the bounds enclose a picture of at least this share of the frame in width and in height
/// (share times size, truncated).
bool keepsEnough(const CropBounds& bounds, FrameSize size, double cropRatio);

/// Trims the longer side of the bounds until they have the frame's aspect ratio. Each of the two
/// edges gives in proportion to the margin that it has already (at least one pixel).
///
/// Ratios are compared in double precision, the excess and the nearer edge computed in single, the
/// farther edge in double, edges truncated: bounds are part of the record's format.
/// @param bounds  within 0, width, 0, height, as a run leaves them that keeps enough picture.
/// @param size    positive.
CropBounds fitToAspect(const CropBounds& bounds, FrameSize size);

/// What a path does across the capture direction, and the room that the frame leaves for it.
struct CropSmoothingSide {
    double min = 0;      ///< Smallest path value, pixels.
    double max = 0;      ///< Largest path value.
    int marginLow = 0;   ///< Top or left crop margin.
    int marginHigh = 0;  ///< Bottom or right crop margin, as a coordinate.
    int length = 0;      ///< Height or width of the frame.
};

struct CropSmoothingPin {
    int value = 0;     ///< Path value to pin the axis to.
    double ratio = 0;  ///< Share of the side that a picture pinned there keeps.
};

/// Path value that keeps the crop inside the margins with the least correction.
CropSmoothingPin pinToMargins(const CropSmoothingSide& side);

}  // namespace orbitwalk
