#pragma once

#include <cstdint>
#include <opencv2/core/mat.hpp>
#include <span>

#include "media/PictureFile.h"
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

/// The map as OpenCV takes it.
cv::Matx23d matrixOf(const Affine& map);

/// The frame as a picture, by the matrix of its size.
cv::Mat3b toBgr(std::span<const std::uint8_t> frame, cv::Size size);

/// A picture in three or four channels, blue first, as files are made of it.
media::Picture pictureOf(const cv::Mat& picture);

/// A picture turned clockwise by 0, 90 or 270 degrees; see displayRotation.
cv::Mat turned(const cv::Mat& picture, int degrees);

/// Warps an I420 frame: each output pixel shows the frame at the point that the map gives,
/// interpolated bicubically and resolved to 1/32 of a sample. Beyond the frame its outermost pixels
/// go on. (Against the true picture a photograph loses 0.2 to 1.4 dB to an 8 x 8 Lanczos kernel,
/// at 52 dB and more, and takes a third of the time; bilinear loses up to 4 dB more.)
/// @param output  as many bytes as the frame; may not overlap it.
void warpFrame(std::span<const std::uint8_t> frame, cv::Size size, const Affine& frameFromOutput,
               std::span<std::uint8_t> output);

/// Number of output pixels that show a point more than a pixel outside the frame, where warpFrame
/// has nothing true to show.
std::int64_t missingPixels(cv::Size size, const Affine& frameFromOutput);

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
