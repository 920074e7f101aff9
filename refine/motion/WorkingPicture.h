#pragma once

#include <opencv2/core/mat.hpp>
#include <vector>

#include "orbitwalk/refine/MotionEstimator.h"

namespace orbitwalk::refine {

/// Halvings above the working picture: shifts up to some 300 working pixels are within reach.
inline constexpr int kPyramidLevels = 4;

/// Full-size pixels for one of the working picture, in each direction: 1, 2 or 4. Half of 1080p
/// measures as exactly as all of it, in a third of the time.
int reductionFor(FrameSize size);

/// Side of the tracker's windows, pixels of the working picture. OpenCV's tracker takes rows in
/// steps of eight and what is left pixel by pixel: 16 costs a third of 21 and measures a picture
/// that was halved as exactly, street scenes better. One that was not has more noise, which takes
/// more pixels.
int trackWindowFor(int reduction);

/// The frame halved, by Gaussian smoothing, as often as the reduction says; only smoothed for 1.
/// Its pixel (x, y) lies at reduction * (x, y) of the frame. What the smoothing takes away would
/// alias and move with the phase of a shift.
/// @param picture  overwritten, so that its memory serves again.
void makeWorkingPicture(const LumaFrame& frame, int reduction, cv::Mat1b& picture);

/// Image pyramid with derivatives, for a tracker with that window. @param pyramid  overwritten.
void makeTrackingPyramid(const cv::Mat1b& picture, int window, std::vector<cv::Mat>& pyramid);

/// Finds corners (Shi and Tomasi, "Good features to track", 1994) spread evenly: the picture is cut
/// into cells, and each gives its best ones, however weak beside those of other cells, as long as
/// they are corners at all. A turn and a zoom are told from a shift by what lies far apart.
class CornerFinder {
  public:
    /// @param window  of the tracker that will follow them.
    explicit CornerFinder(int window);

    /// @param pyramid  of the working picture, whose coordinates the corners have. Looked for in
    ///        its first halving: what is a corner there can be followed in both.
    std::vector<cv::Point2f> operator()(const std::vector<cv::Mat>& pyramid);

  private:
    int mBorder;  ///< A corner's window must lie in the picture; pixels of its first halving.
    cv::Mat1f mStrength;  ///< Kept for its memory.
};

}  // namespace orbitwalk::refine
