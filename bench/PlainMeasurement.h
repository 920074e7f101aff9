#pragma once

#include <cstdint>
#include <functional>
#include <opencv2/core.hpp>
#include <vector>

#include "orbitwalk/Geometry.h"

namespace bench {

/// What the engine measures of a frame, written down plainly: a call of OpenCV after the other,
/// each with its pictures, and new arrays every time. It has the engine's results to the bit, and
/// the time of OpenCV's calls alone is what the engine's whole call is held against.
class PlainMeasurement {
  public:
    /// @param now  seconds, by the clock that the calls are timed with
    PlainMeasurement(int width, int height, std::function<double()> now)
        : mWidth(width), mHeight(height), mNow(std::move(now)) {}

    /// @return the cumulative motion of the picture, as getTrajectory has it.
    orbitwalk::Trajectory measure(const std::uint8_t* luma);

    /// Seconds that the last frame spent in goodFeaturesToTrack and calcOpticalFlowPyrLK.
    double seconds() const { return mSeconds; }
    /// Corners of all frames.
    std::size_t corners() const { return mCorners; }

  private:
    using Points = std::vector<cv::Point2f>;

    cv::Mat reduced(const std::uint8_t* luma) const;
    /// @return false: the frame repeats the last motion.
    bool follow(const cv::Mat& prev, const cv::Mat& cur, Points& from, Points& to);
    Points corners(const cv::Mat& view);
    std::vector<unsigned char> track(const cv::Mat& prev, const cv::Mat& cur, const Points& from,
                                     Points& to);

    int mWidth, mHeight;
    std::function<double()> mNow;
    cv::Mat mPrevious;
    orbitwalk::Trajectory mMotion, mSum;
    double mSeconds = 0;
    std::size_t mCorners = 0;
};

}  // namespace bench
