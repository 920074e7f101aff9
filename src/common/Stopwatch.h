#pragma once

#include <sys/time.h>

namespace orbitwalk {

/// Milliseconds between two times of day. Both parts are computed in single precision, after
/// borrowing a second when the microsecond difference is negative.
float elapsedMilliseconds(const timeval& from, const timeval& to);

/// Measures a stretch by the time of day and logs it at verbose priority under a tag that names it.
class Stopwatch {
  public:
    Stopwatch();

    /// Logs "Time Elapsed : %f ms\n" since construction.
    void log(const char* tag) const;

  private:
    timeval mStart;
};

/// Logs the time of the scope that it stands in.
class ScopedTiming {
  public:
    explicit ScopedTiming(const char* tag) : mTag(tag) {}
    ~ScopedTiming() { mStopwatch.log(mTag); }
    ScopedTiming(const ScopedTiming&) = delete;
    ScopedTiming& operator=(const ScopedTiming&) = delete;

  private:
    const char* mTag;
    Stopwatch mStopwatch;
};

}  // namespace orbitwalk
