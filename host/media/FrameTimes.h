#pragma once

#include <cstdint>
#include <optional>

#include "media/AvHandles.h"
#include "media/VideoReader.h"

namespace orbitwalk::media {

/// When a stream's pictures are shown, and which of them are asked for. Times in units of the
/// stream unless said otherwise. A picture without a timestamp comes one period of the average rate
/// after the last.
class FrameTimes {
  public:
    enum class Place { Before, Within, After };

    FrameTimes(const AVStream& stream, const ReadOptions& options);

    /// Takes the time of the stream's first picture, from which the options count.
    /// @return a place to go to when the pictures in between are worth leaving out undecoded.
    std::optional<std::int64_t> begin(const AVFrame& first);
    /// Takes the next picture, in order.
    Place place(const AVFrame& picture);
    /// The end of what is asked for has come.
    bool isOver() const { return mOver; }
    /// Pictures from this time on are not asked for; INT64_MAX when all are.
    std::int64_t end() const { return mEnd; }
    /// How many of so many frames at an even rate are asked for.
    std::int64_t framesWithin(std::int64_t frames) const;
    std::optional<RateRange> variableRate() const;

  private:
    std::int64_t ticks(std::chrono::microseconds time) const;

    AVRational mUnit;
    std::int64_t mPeriod;
    std::int64_t mDelay;                    ///< From the first picture to the first asked for.
    std::optional<std::int64_t> mDuration;  ///< Of what is asked for.
    std::int64_t mBegin = INT64_MIN;
    std::int64_t mEnd = INT64_MAX;
    bool mOver = false;
    std::optional<std::int64_t> mLast;  ///< Time of the last picture.
    bool mLastWithin = false;
    std::int64_t mShortest = INT64_MAX;  ///< Between two pictures asked for.
    std::int64_t mLongest = 0;
};

}  // namespace orbitwalk::media
