#pragma once

#include <cmath>
#include <opencv2/core/mat.hpp>
#include <optional>
#include <span>

#include "evaluate/PictureMatch.h"

namespace orbitwalk::tool {

/// Motion of the picture from one frame to the next, at the frame's centre.
struct FrameMotion {
    double x = 0;      ///< Pixels of the full-size frame, to the right.
    double y = 0;      ///< Pixels, down.
    double angle = 0;  ///< Degrees, clockwise on the screen.
};

/// Root mean square of the second difference of the picture's path, the change of its motion from
/// one frame to the next. An even pan gives 0, whatever its speed. Pixels and degrees.
struct ResidualMotion {
    double x = 0;
    double y = 0;
    double angle = 0;
    int unmeasured = 0;  ///< Motions that could not be measured; left out.

    double shift() const { return std::hypot(x, y); }  ///< Both axes together.
};

/// Nothing when no two motions one after the other could be measured.
std::optional<ResidualMotion> residualMotion(std::span<const std::optional<FrameMotion>> motions);

/// A frame made ready for its motion to be measured.
class MeasuredFrame {
  public:
    /// @param luma  full-size. Not kept.
    explicit MeasuredFrame(const cv::Mat1b& luma);

    /// Of the picture to the next frame, of the same size. Nothing when it cannot be measured.
    std::optional<FrameMotion> motionTo(const MeasuredFrame& next) const;

  private:
    cv::Size mSize;
    PictureCorners mPicture;
};

}  // namespace orbitwalk::tool
