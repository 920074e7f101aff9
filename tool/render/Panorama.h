#pragma once

#include <functional>
#include <opencv2/core/mat.hpp>
#include <opencv2/core/types.hpp>
#include <span>
#include <vector>

#include "orbitwalk/RecordReader.h"
#include "sweep/Playlist.h"
#include "sweep/Sweep.h"

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

/// Paints pictures over each other. What lies on top fades in over its edges, so that no seam
/// shows; exposure is left as it is.
class PanoramaCanvas {
  public:
    explicit PanoramaCanvas(cv::Size size);

    /// @param picture  to put with its top left corner at the given pixel; must fit.
    /// @param weight   of each of its pixels: 0 keeps what lies below, 255 covers it. Where nothing
    /// lies below, any weight but 0 covers.
    void paint(const cv::Mat3b& picture, const cv::Mat1b& weight, cv::Point corner);

    /// What was painted; transparent elsewhere.
    cv::Mat4b picture() const;

  private:
    cv::Mat3b mColour;
    cv::Mat1b mCover;
};

/// The whole sweep as one picture: every shot at its place in the scene, later ones on top;
/// mirrored where the preview was.
/// @param progress  told the number of shots painted so far.
/// @throws ToolError, MediaError: see recordedMotions, layOut and ShotReader.
cv::Mat4b panorama(const Sweep& sweep, bool withBorderFrames, int threads,
                   const std::function<void(int)>& progress);

}  // namespace orbitwalk::tool
