#pragma once

#include <opencv2/core/mat.hpp>

namespace orbitwalk::refine {

/// How much of a corner each place of a picture is: the smaller eigenvalue of the matrix of its
/// derivatives' products (Shi and Tomasi, "Good features to track", 1994), Sobel's derivatives,
/// summed over 3 x 3 places. Scaled as cv::cornerMinEigenVal's, in a sixth of its time: what is
/// summed are whole numbers.
/// @param strength  overwritten, of the picture's size; 0 at the two outermost places of each side.
void cornerStrength(const cv::Mat1b& picture, cv::Mat1f& strength);

}  // namespace orbitwalk::refine
