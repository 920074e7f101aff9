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

}  // namespace orbitwalk
