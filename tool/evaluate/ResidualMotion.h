#pragma once

#include <cmath>
#include <opencv2/core/mat.hpp>
#include <optional>
#include <span>
#include <vector>

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

/// Measures a video's motions as its frames pass by.
class MotionMeter {
  public:
    /// @param luma  a full-size frame; all of one size. Not kept.
    void take(const cv::Mat1b& luma);

    /// One a pair of neighbours.
    std::span<const std::optional<FrameMotion>> motions() const { return mMotions; }

  private:
    cv::Mat1b mLast;
    std::vector<std::optional<FrameMotion>> mMotions;
};

}  // namespace orbitwalk::tool
