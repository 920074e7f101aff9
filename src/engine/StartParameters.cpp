#include "engine/StartParameters.h"

#include <cstring>
#include <limits>

namespace orbitwalk {

bool isUsableFrameSize(std::int32_t width, std::int32_t height) {
    constexpr std::int32_t smallestSide = 4;
    constexpr std::int32_t largestSide = 32767;
    if (width < smallestSide || height < smallestSide || width > largestSide ||
        height > largestSide)
        return false;
    const std::int64_t slotBytes = std::int64_t{width} * height * 3 / 2;
    return slotBytes * kFrameSlots <= std::numeric_limits<std::int32_t>::max();
}

std::int32_t recordedOrientation(std::int32_t orientation) {
    switch (orientation) {
        case 90:
            return 270;
        case 270:
            return 90;
        default:
            return orientation;
    }
}

std::int32_t frontCamFlipped(const _OBW_ENGINE_INIT_PARAM& param) {
    unsigned char byte;
    std::memcpy(&byte, &param.frontCamFlipped, 1);
    return byte != 0;
}

}  // namespace orbitwalk
