#pragma once

#include <opencv2/core/mat.hpp>
#include <optional>

#include "evaluate/MissingBorder.h"
#include "sweep/Affine.h"

namespace orbitwalk::tool {

/// Root-mean-square gradient of a stabilised frame's luma as a share of that of its source, brought
/// to the picture's grid by one Lanczos interpolation: 1 is as sharp as resampling can be. Taken
/// where both show something, away from the missing border. Nothing when they have no flat-free
/// area in common.
std::optional<double> relativeSharpness(const cv::Mat1b& picture, const cv::Mat1b& source,
                                        const Affine& sourceFromPicture,
                                        const EdgeRegions& missingBorder);

}  // namespace orbitwalk::tool
