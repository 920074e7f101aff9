#include "frameproc/FrameSize.h"

#include <limits>
#include <stdexcept>

namespace orbitwalk {

std::int32_t yuv420FrameBytes(std::int32_t width, std::int32_t height) {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t pixels = std::int64_t{width} * height;
    if (pixels > Limits::max() / 3 || pixels < Limits::min() / 3)
        throw std::length_error("frame size does not fit 32 bits");
    return static_cast<std::int32_t>(pixels * 3) >> 1;
}

}  // namespace orbitwalk
