#pragma once

#include <cstddef>
#include <cstdint>

/// One plane of a camera's image, as android.media.Image gives it.
struct ImagePlane {
    const std::uint8_t* bytes;
    std::size_t size;         ///< Bytes from `bytes` on that may be read.
    std::size_t rowStride;    ///< Bytes from a row to the next.
    std::size_t pixelStride;  ///< Bytes from a value to the next: 1, or 2 where U and V alternate.
};

/// Packs a YUV_420_888 image as the engine takes frames: luma, U, V, without padding.
/// @param width   of the luma, even
/// @param height  of the luma, even
/// @param frame   receives width * height * 3 / 2 bytes
/// @return whether the planes hold a picture of that size; `frame` is as before if not.
bool packI420(const ImagePlane& y, const ImagePlane& u, const ImagePlane& v, std::size_t width,
              std::size_t height, std::uint8_t* frame);
