#include "motion/WorkingPicture.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <opencv2/video/tracking.hpp>

#include "motion/CornerStrength.h"

namespace orbitwalk::refine {

namespace {

constexpr int kCellsAcross = 16;  ///< Along the longer side.
constexpr int kCornersPerCell = 2;
/// A picture this small shows less of everything; more corners make up for their noise.
constexpr int kSmallSide = 900;
constexpr int kCornersPerCellOfSmall = 4;
/// Corners of one cell are at least this far apart, pixels of the halved picture.
constexpr int kCornerDistance = 5;
/// Smaller eigenvalue below which a place is no corner, as a share of the picture's best one.
constexpr float kCornerQuality = 2e-3f;
/// And in any case: what noise of one grey level reaches.
constexpr float kLeastCorner = 2e-5f;

/// The strongest place of a cell; the first in reading order of several.
cv::Point strongest(const cv::Mat1f& strength, cv::Rect cell) {
    cv::Point at = cell.tl();
    for (int y = cell.y; y < cell.br().y; ++y) {
        const float* const row = strength[y];
        const float* const best = std::max_element(row + cell.x, row + cell.br().x);
        if (*best > strength(at))
            at = {static_cast<int>(best - row), y};
    }
    return at;
}

/// Takes the best corners of a cell and blanks what is too near to them.
void takeCorners(cv::Mat1f& strength, cv::Rect cell, int most, float least,
                 std::vector<cv::Point2f>& corners) {
    const cv::Rect whole({}, strength.size());
    for (int k = 0; k < most; ++k) {
        const cv::Point at = strongest(strength, cell);
        if (strength(at) < least)
            return;
        corners.emplace_back(2 * at);
        const cv::Rect near(at.x - kCornerDistance, at.y - kCornerDistance, 2 * kCornerDistance + 1,
                            2 * kCornerDistance + 1);
        strength(near & whole).setTo(0);
    }
}

}  // namespace

int reductionFor(FrameSize size) {
    const int longer = std::max(size.width, size.height);
    return longer <= 1280 ? 1 : longer <= 4096 ? 2 : 4;
}

void makeWorkingPicture(const LumaFrame& frame, int reduction, cv::Mat1b& picture) {
    const cv::Mat1b full(frame.size.height, frame.size.width,
                         const_cast<std::uint8_t*>(frame.pixels),
                         static_cast<std::size_t>(frame.stride));
    if (reduction == 1)
        cv::GaussianBlur(full, picture, {5, 5}, 1.0);
    else
        cv::pyrDown(full, picture);
    for (int done = 2; done < reduction; done *= 2)
        cv::pyrDown(picture, picture);
}

int trackWindowFor(int reduction) {
    return reduction == 1 ? 21 : 16;
}

void makeTrackingPyramid(const cv::Mat1b& picture, int window, std::vector<cv::Mat>& pyramid) {
    cv::buildOpticalFlowPyramid(picture, pyramid, {window, window}, kPyramidLevels);
}

CornerFinder::CornerFinder(int window) : mBorder(window / 4 + 2) {}

std::vector<cv::Point2f> CornerFinder::operator()(const std::vector<cv::Mat>& pyramid) {
    // A level is a picture and its derivatives; a picture too small to be halved has one level.
    if (pyramid.size() < 4)
        return {};
    const cv::Mat& halved = pyramid[2];
    const cv::Rect inside(mBorder, mBorder, halved.cols - 2 * mBorder, halved.rows - 2 * mBorder);
    if (inside.width < 1 || inside.height < 1)
        return {};
    cornerStrength(halved, mStrength);
    double best = 0;
    cv::minMaxLoc(mStrength(inside), nullptr, &best);
    const float least = std::max(kLeastCorner, kCornerQuality * static_cast<float>(best));
    const int side = std::max(1, std::max(inside.width, inside.height) / kCellsAcross);
    const bool isSmall = std::max(pyramid[0].cols, pyramid[0].rows) < kSmallSide;
    const int most = isSmall ? kCornersPerCellOfSmall : kCornersPerCell;
    std::vector<cv::Point2f> corners;
    for (int y = inside.y; y < inside.br().y; y += side)
        for (int x = inside.x; x < inside.br().x; x += side)
            takeCorners(mStrength, cv::Rect(x, y, side, side) & inside, most, least, corners);
    return corners;
}

}  // namespace orbitwalk::refine
