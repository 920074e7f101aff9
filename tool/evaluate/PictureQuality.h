#pragma once

#include <cstdint>
#include <opencv2/core/mat.hpp>
#include <optional>

#include "render/Affine.h"

namespace orbitwalk::tool {

/// Root-mean-square gradient of a stabilised frame's luma as a share of that of its source, brought
/// to the picture's grid by one Lanczos interpolation: 1 is as sharp as resampling can be. Taken
/// where both show something. Nothing when they have no flat-free area in common.
std::optional<double> relativeSharpness(const cv::Mat1b& picture, const cv::Mat1b& source,
                                        const Affine& sourceFromPicture);

/// Number of black pixels in regions of 64 or more that touch the picture's edge: what a stabiliser
/// without anything to show leaves. Black is up to 18 of video range, for an encoder's ringing.
std::int64_t blackBorderPixels(const cv::Mat1b& luma);

/// The same, but only pixels that the source does not show as dark itself: a scene's own shadows at
/// the edge are not missing.
std::int64_t missingBorderPixels(const cv::Mat1b& picture, const cv::Mat1b& source,
                                 const Affine& sourceFromPicture);

}  // namespace orbitwalk::tool
