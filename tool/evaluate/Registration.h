#pragma once

#include <opencv2/core/mat.hpp>
#include <optional>

#include "sweep/Affine.h"

namespace orbitwalk::tool {

struct PictureMatch {
    Affine map;       ///< A similarity, from points of the one picture to those of the other.
    int support = 0;  ///< Number of tracked corners that agree with it.
};

/// Where the larger part of a picture went in another one of the same size: corners over the whole
/// picture, followed forth and back (Lucas-Kanade in an image pyramid), and the similarity that
/// most of them agree with (RANSAC, then least squares over those). It shares neither code nor
/// reduction with the engine's own measurement, so it can judge it. Nothing when too few corners
/// agree.
std::optional<PictureMatch> matchPictures(const cv::Mat1b& from, const cv::Mat1b& to);

/// A picture reduced by a whole factor, each pixel the mean of its square; what is over at the
/// right and at the bottom is left out. enlargement(factor, factor) leads back to the full size.
cv::Mat1b reducedPicture(const cv::Mat1b& picture, int factor);

/// The smallest factor that brings the longer side down to the limit.
int reductionTo(int limit, cv::Size size);

/// A map between reduced pictures as the map between the full-size ones.
Affine atFullSize(const Affine& reduced, int factor);

/// Finds in each frame of a stabilised video the part of the source frame that it shows. Begins
/// from where the last frame was found, so frames come in order.
class Registration {
  public:
    /// @param picture, source  full-size luma; the sizes may differ.
    /// @return source point that the picture shows at a point, a similarity; nothing when the two
    /// cannot be matched.
    std::optional<Affine> find(const cv::Mat1b& picture, const cv::Mat1b& source);

  private:
    std::optional<Affine> mLast;  ///< Of the reduced pictures.
};

/// What a stabilised frame shows of its source frame.
struct View {
    double kept = 0;    ///< Share of the source frame's area that is to be seen.
    double beyond = 0;  ///< Share of the picture's area that lies more than two pixels outside the
                        ///< source frame: black there, or filled with something else.
};

View viewOf(const Affine& sourceFromPicture, cv::Size picture, cv::Size source);

}  // namespace orbitwalk::tool
