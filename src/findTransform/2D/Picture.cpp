#include "findTransform/2D/Picture.h"

#include <opencv2/imgproc.hpp>
#include <opencv2/video/tracking.hpp>
#include <utility>

#include "findTransform/2D/LumaReduction.h"

namespace orbitwalk {

void keepTemporaries(cv::Size view) {
    // A block that is freed shows glibc what sizes come and go: up to 32 MB it keeps such blocks
    // from then on, and twice as much in all. The corner selection takes 28 bytes a pixel.
    constexpr int kBytesPerPixel = 32, kLargest = 32 << 20;
    if (view.area() <= kLargest / kBytesPerPixel)
        cv::Mat(view, CV_MAKETYPE(CV_8U, kBytesPerPixel));
}

void Picture::reset(cv::Size size) {
    Picture fresh;
    if (!size.empty()) {
        fresh.mPixels.resize(static_cast<std::size_t>(size.width) * size.height);
        fresh.mView = centralView({size, CV_8UC1, fresh.mPixels.data()});
        fresh.mCorners.reserve(kMostCorners);
    }
    *this = std::move(fresh);
}

unsigned char* Picture::rewrite() {
    mHasCorners = mHasPyramid = false;
    return mPixels.data();
}

const Points& Picture::corners() {
    if (!mHasCorners) {
        cv::goodFeaturesToTrack(mView, mCorners, kMostCorners, 0.05, 10.0, cv::noArray(), 3, false,
                                0.04);
        mHasCorners = true;
    }
    return mCorners;
}

const std::vector<cv::Mat>& Picture::pyramid() {
    if (!mHasPyramid) {
        cv::buildOpticalFlowPyramid(mView, mPyramid, cv::Size(kTrackingWindow, kTrackingWindow),
                                    kTopLevel);
        mHasPyramid = true;
    }
    return mPyramid;
}

void Picture::prepare() noexcept try {
    if (corners().size() >= kFewestTracks)
        pyramid();
} catch (...) {
    // The next frame asks for it again, in its place among the log's lines.
}

}  // namespace orbitwalk
