#include "CameraImage.h"

#include <cstring>

namespace {

/// The last row of a plane ends with its last value, without the padding of the others.
bool holds(const ImagePlane& plane, std::size_t width, std::size_t height) {
    return plane.bytes != nullptr && plane.pixelStride > 0 &&
           plane.rowStride >= (width - 1) * plane.pixelStride + 1 &&
           plane.size >= (height - 1) * plane.rowStride + (width - 1) * plane.pixelStride + 1;
}

std::uint8_t* pack(const ImagePlane& plane, std::size_t width, std::size_t height,
                   std::uint8_t* out) {
    for (std::size_t row = 0; row < height; ++row) {
        const std::uint8_t* in = plane.bytes + row * plane.rowStride;
        if (plane.pixelStride == 1) {
            std::memcpy(out, in, width);
            out += width;
        } else {
            for (std::size_t x = 0; x < width; ++x)
                *out++ = in[x * plane.pixelStride];
        }
    }
    return out;
}

}  // namespace

bool packI420(const ImagePlane& y, const ImagePlane& u, const ImagePlane& v, std::size_t width,
              std::size_t height, std::uint8_t* frame) {
    if (width < 2 || height < 2 || width % 2 != 0 || height % 2 != 0 || !holds(y, width, height) ||
        !holds(u, width / 2, height / 2) || !holds(v, width / 2, height / 2))
        return false;
    frame = pack(y, width, height, frame);
    frame = pack(u, width / 2, height / 2, frame);
    pack(v, width / 2, height / 2, frame);
    return true;
}
