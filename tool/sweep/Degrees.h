#pragma once

#include <numbers>

namespace orbitwalk::tool {

/// Records, paths and motions hold radians; what people read are degrees.
constexpr double degrees(double radians) {
    return radians * 180 / std::numbers::pi;
}

constexpr double radians(double degrees) {
    return degrees / 180 * std::numbers::pi;
}

}  // namespace orbitwalk::tool
