#pragma once

#include <opencv2/core/mat.hpp>
#include <optional>
#include <vector>

#include "sweep/Affine.h"

namespace orbitwalk::tool {

/// A picture as it is followed, with its derivatives: made once for all pictures it is matched
/// with, forth and back.
using Pyramid = std::vector<cv::Mat>;

Pyramid pyramidOf(const cv::Mat1b& picture);

/// A picture to be found again in others.
struct PictureCorners {
    explicit PictureCorners(const cv::Mat1b& picture);

    std::vector<cv::Point2f> points;
    Pyramid pyramid;
};

struct PictureMatch {
    Affine map;       ///< A similarity, from points of the one picture to those of the other.
    int support = 0;  ///< Number of tracked corners that agree with it.
};

/// Where the larger part of a picture went in another one of the same size: corners over the whole
/// picture, followed forth and back (Lucas-Kanade in an image pyramid), and the similarity that
/// most of them agree with (RANSAC, then least squares over those). It shares neither code nor
/// reduction with the engine's own measurement, so it can judge it. Nothing when too few corners
/// agree.
std::optional<PictureMatch> matchPictures(const PictureCorners& from, const Pyramid& to);

/// A picture reduced by a whole factor, each pixel the mean of its square; what is over at the
/// right and at the bottom is left out. enlargement(factor, factor) leads back to the full size.
/// With 1 it is the picture itself, not a copy.
cv::Mat1b reducedPicture(const cv::Mat1b& picture, int factor);

/// The smallest factor that brings the longer side down to the limit.
int reductionTo(int limit, cv::Size size);

/// A map between reduced pictures as the map between the full-size ones.
Affine atFullSize(const Affine& reduced, int factor);

}  // namespace orbitwalk::tool
