#pragma once

#include <array>
#include <cstdint>
#include <opencv2/core/mat.hpp>
#include <span>
#include <vector>

namespace orbitwalk::tool {

/// Puts pairs of I420 frames into one picture each, "recorded" on the left and "steady" on the
/// right, and labels them so. The picture is never wider than 3840 pixels, what players show
/// without ado: frames too wide for that are shrunk together.
class SideBySide {
  public:
    /// @param rotation  by which players turn the picture, clockwise: 0, 90 or 270 degrees. Left,
    /// right and wide are what they are once it is turned.
    SideBySide(cv::Size frame, int rotation);

    /// Of the pictures, even.
    cv::Size size() const;
    /// @return an I420 frame of that size.
    std::vector<std::uint8_t> operator()(std::span<const std::uint8_t> recorded,
                                         std::span<const std::uint8_t> steady) const;

  private:
    cv::Point cornerOf(int half) const;

    cv::Size mFrame;
    int mRotation;
    cv::Size mHalf;
    std::array<cv::Mat1b, 2> mLabels;  ///< Turned as the frames are; empty where there is no room.
};

}  // namespace orbitwalk::tool
