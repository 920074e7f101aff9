#pragma once

#include <opencv2/core/types.hpp>
#include <span>
#include <vector>

#include "orbitwalk/RecordReader.h"
#include "sweep/Playlist.h"

namespace orbitwalk::tool {

/// Where the pictures of a sweep lie in the scene that they sweep across, whose coordinates are
/// pixels of the first rendered frame. A frame moves with the picture's motion from frame to frame;
/// a corrected picture lies where its matrix cuts it from its frame. So the pictures of a sweep lie
/// along minus the smoothed path, and the same thing lies at the same place in all of them.

/// A picture's place on the canvas.
struct Placement {
    Shot shot;
    Affine canvasFromPicture;
    cv::Rect bounds;  ///< Of its crop rectangle on the canvas, inside it.
};

struct PanoramaLayout {
    cv::Size canvas;
    double scale = 1;  ///< Canvas pixels per frame pixel, at most 1.
    std::vector<Placement> placements;
};

/// Lays the crop rectangle of every shot on a canvas that just holds them all, scaled down where
/// that would be larger than 16384 pixels a side or 40 million in all.
/// @param motions  one a rendered frame, see recordedMotions.
/// @throws ToolError when the canvas would have to be scaled down more than ten times.
PanoramaLayout layOut(const RecordReader& record, std::span<const Shot> shots,
                      std::span<const SimilarityTransform> motions);

}  // namespace orbitwalk::tool
