#include "media/FrameTimes.h"

#include <algorithm>
#include <utility>

#include "media/StreamFacts.h"

namespace orbitwalk::media {

namespace {

constexpr AVRational kMicroseconds{1, AV_TIME_BASE};

/// Less than this is decoded sooner than a place in the file is found.
constexpr std::chrono::seconds kWorthSeeking{5};

/// Timestamps in milliseconds, as many containers have, vary by one.
constexpr std::int64_t kRoundedTicks = 2;

std::int64_t periodOf(const AVStream& stream) {
    const FrameRate rate = frameRateOf(stream);
    return std::max<std::int64_t>(
        1, av_rescale_q(1, {rate.denominator, rate.numerator}, stream.time_base));
}

}  // namespace

FrameTimes::FrameTimes(const AVStream& stream, const ReadOptions& options)
    : mUnit(stream.time_base), mPeriod(periodOf(stream)), mDelay(ticks(options.start)) {
    if (options.duration)
        mDuration = ticks(*options.duration);
}

std::int64_t FrameTimes::ticks(std::chrono::microseconds time) const {
    return av_rescale_q(time.count(), kMicroseconds, mUnit);
}

std::optional<std::int64_t> FrameTimes::begin(const AVFrame& first) {
    const bool timed = first.best_effort_timestamp != AV_NOPTS_VALUE;
    const std::int64_t zero = timed ? first.best_effort_timestamp : 0;
    mBegin = av_sat_add64(zero, mDelay);
    if (mDuration)
        mEnd = av_sat_add64(mBegin, *mDuration);
    return timed && mDelay > ticks(kWorthSeeking) ? std::optional(mBegin) : std::nullopt;
}

FrameTimes::Place FrameTimes::place(const AVFrame& picture) {
    std::int64_t time = picture.best_effort_timestamp;
    if (time == AV_NOPTS_VALUE)
        time = mLast ? *mLast + mPeriod : 0;
    const std::optional<std::int64_t> last = std::exchange(mLast, time);
    if (time < mBegin)
        return Place::Before;
    if (time >= mEnd) {
        mOver = true;
        return Place::After;
    }
    if (const std::int64_t interval = last ? time - *last : 0; mLastWithin && interval > 0) {
        mShortest = std::min(mShortest, interval);
        mLongest = std::max(mLongest, interval);
    }
    mLastWithin = true;
    return Place::Within;
}

std::int64_t FrameTimes::framesWithin(std::int64_t frames) const {
    if (frames <= 0)
        return frames;
    const std::int64_t rest = std::max<std::int64_t>(0, frames - mDelay / mPeriod);
    return mDuration ? std::min(rest, *mDuration / mPeriod) : rest;
}

std::optional<RateRange> FrameTimes::variableRate() const {
    const std::int64_t difference = mLongest - mShortest;
    if (mLongest == 0 || difference <= kRoundedTicks || difference * 10 <= mShortest)
        return std::nullopt;
    const double unit = av_q2d(mUnit);
    return RateRange{1 / (unit * static_cast<double>(mLongest)),
                     1 / (unit * static_cast<double>(mShortest))};
}

}  // namespace orbitwalk::media
