#pragma once

#include <opencv2/core/mat.hpp>
#include <optional>

#include "sweep/Affine.h"

namespace orbitwalk::tool {

/// Root-mean-square gradient of a stabilised frame's luma as a share of that of its source, brought
/// to the picture's grid by one Lanczos interpolation: 1 is as sharp as resampling can be. Taken
/// where both show something, away from the missing border. Nothing when they have no flat-free
/// area in common.
std::optional<double> relativeSharpness(const cv::Mat1b& picture, const cv::Mat1b& source,
                                        const Affine& sourceFromPicture,
                                        const cv::Mat1b& missingBorder);

/// The black pixels in regions of 64 or more that touch the picture's edge: what a stabiliser
/// without anything to show leaves. Black is up to 18 of video range, for an encoder's ringing.
/// @return a mask of 255.
cv::Mat1b blackBorder(const cv::Mat1b& luma);

/// The same, but only pixels that the source does not show as dark itself: a scene's own shadows at
/// the edge are not missing.
cv::Mat1b missingBorder(const cv::Mat1b& picture, const cv::Mat1b& source,
                        const Affine& sourceFromPicture);

/// Share of the source's area that is black in the picture, though it lies in it.
double hiddenShare(const cv::Mat1b& missingBorder, cv::Size source,
                   const Affine& sourceFromPicture);

}  // namespace orbitwalk::tool
