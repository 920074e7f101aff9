#pragma once

#include <opencv2/core.hpp>
#include <vector>

#include "findTransform/2D/TrackFilter.h"

namespace orbitwalk {

/// Side of the tracker's window, which is the width of the pyramid's borders.
constexpr int kTrackingWindow = 21;
/// Highest level of the pyramid; small pictures have fewer.
constexpr int kTopLevel = 3;
/// No more corners than this are looked for, so that no set of points or tracks is larger.
constexpr int kMostCorners = 2000;

/// The reduced picture of a frame, and what is made of its central view: each part once, at the
/// first asking or ahead of it, whether the picture then is the previous or the current one. The
/// memory is kept from frame to frame.
class Picture {
  public:
    /// A black picture; without a size, none.
    void reset(cv::Size size = {});
    bool empty() const { return mPixels.empty(); }

    /// The pixels, row by row, to be written anew: what was made of the old ones no longer holds.
    unsigned char* rewrite();
    /// They stay where they are until reset.
    const unsigned char* pixels() const { return mPixels.data(); }
    const cv::Mat& view() const { return mView; }

    /// Corners of the view, the strongest first.
    const Points& corners();
    /// The view's pyramid and its derivatives, as the tracker takes them.
    const std::vector<cv::Mat>& pyramid();
    /// Makes what a next frame will ask for. What fails here is left to the asking, and fails
    /// there.
    void prepare() noexcept;

  private:
    std::vector<unsigned char> mPixels;
    cv::Mat mView;  ///< Of the pixels.
    Points mCorners;
    std::vector<cv::Mat> mPyramid;
    bool mHasCorners = false;
    bool mHasPyramid = false;
};

/// Has the C library keep the memory that OpenCV takes and frees for each picture with this view,
/// instead of handing it back to the system and fetching it anew, page by page, every frame.
void keepTemporaries(cv::Size view);

}  // namespace orbitwalk
