#pragma once

#include <cstdint>
#include <opencv2/core/mat.hpp>
#include <span>

#include "sweep/Affine.h"

/// Frames are tightly packed I420 of even size and video range. A colour sample lies where H.264
/// puts it unless told otherwise: level with every other column of the luma, and half-way between
/// two of its rows.
namespace orbitwalk::tool {

/// Luma coordinates of a colour sample.
inline constexpr Affine kLumaFromColour{2, 0, 0, 0, 2, 0.5};

struct FramePlanes {
    cv::Mat1b y;
    cv::Mat1b cb;
    cv::Mat1b cr;
};

/// Bytes of a frame.
std::size_t frameBytes(cv::Size size);

/// Views of a frame's planes. @param frame  frameBytes(size) long; outlives the views.
FramePlanes planesOf(std::span<std::uint8_t> frame, cv::Size size);

/// The same, for reading only.
const FramePlanes planesOf(std::span<const std::uint8_t> frame, cv::Size size);

/// The frame as a picture, by the matrix of its size.
cv::Mat3b toBgr(std::span<const std::uint8_t> frame, cv::Size size);

}  // namespace orbitwalk::tool
