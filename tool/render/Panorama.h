#pragma once

#include <functional>
#include <opencv2/core/mat.hpp>

#include "render/PanoramaLayout.h"
#include "sweep/ShotReader.h"

namespace orbitwalk::tool {

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
