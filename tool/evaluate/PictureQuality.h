#pragma once

#include <cstdint>
#include <opencv2/core/mat.hpp>
#include <optional>
#include <vector>

#include "sweep/Affine.h"

namespace orbitwalk::tool {

/// Pixels of a row, one beside the other.
struct PixelRun {
    int row = 0;
    int first = 0;
    int end = 0;  ///< After the last one.
};

/// Regions of a picture that touch its edge, in runs that do not overlap.
using EdgeRegions = std::vector<PixelRun>;

std::int64_t pixelsOf(const EdgeRegions& regions);

/// The black pixels in regions of 64 or more that touch the picture's edge: what a stabiliser
/// without anything to show leaves. Black is up to 18 of video range, for an encoder's ringing.
EdgeRegions blackBorder(const cv::Mat1b& luma);

/// The same, but only pixels that the source does not show as dark itself: a scene's own shadows at
/// the edge are not missing.
EdgeRegions missingBorder(const cv::Mat1b& picture, const cv::Mat1b& source,
                          const Affine& sourceFromPicture);

/// Share of the source's area that is black in the picture, though it lies in it.
double hiddenShare(const EdgeRegions& missingBorder, cv::Size source,
                   const Affine& sourceFromPicture);

/// Root-mean-square gradient of a stabilised frame's luma as a share of that of its source, brought
/// to the picture's grid by one Lanczos interpolation: 1 is as sharp as resampling can be. Taken
/// where both show something, away from the missing border. Nothing when they have no flat-free
/// area in common.
std::optional<double> relativeSharpness(const cv::Mat1b& picture, const cv::Mat1b& source,
                                        const Affine& sourceFromPicture,
                                        const EdgeRegions& missingBorder);

}  // namespace orbitwalk::tool
