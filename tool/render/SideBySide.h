#pragma once

#include <cstdint>
#include <opencv2/core/types.hpp>
#include <span>
#include <vector>

namespace orbitwalk::tool {

/// Size of two frames side by side: twice as wide, but never wider than 3840 pixels, what players
/// show without ado; frames too wide for that are shrunk together. Even.
cv::Size pairSize(cv::Size frame);

/// Puts two I420 frames of one size side by side. @return an I420 frame of pairSize.
std::vector<std::uint8_t> sideBySide(std::span<const std::uint8_t> left,
                                     std::span<const std::uint8_t> right, cv::Size size);

}  // namespace orbitwalk::tool
