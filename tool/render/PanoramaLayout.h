#pragma once

#include <opencv2/core/types.hpp>
#include <span>
#include <vector>

#include "orbitwalk/RecordReader.h"
#include "sweep/Playlist.h"

namespace orbitwalk::tool {

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
/// @param frames  map from the scene to each frame of the record, see framesFromScene.
/// @throws ToolError when the canvas would have to be scaled down more than ten times.
PanoramaLayout layOut(const RecordReader& record, std::span<const Shot> shots,
                      std::span<const Affine> frames);

}  // namespace orbitwalk::tool
