#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace orbitwalk::tool {

/// A line of progress that fits the columns, without an end: label, a bar, steps done of all, rate
/// and time left, of which a narrow terminal shows less.
/// @param total  0 when unknown: then there is no bar and no time left.
std::string progressLine(const std::string& label, std::int64_t done, std::int64_t total,
                         double seconds, int columns);

/// A line on stderr that shows how far long work is; silent where stderr is no terminal, and when
/// quiet. Redraws at most ten times a second.
class ProgressBar {
  public:
    /// @param total  number of steps, 0 when unknown.
    ProgressBar(std::string label, std::int64_t total);
    /// Clears the line.
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void update(std::int64_t done);

  private:
    using Clock = std::chrono::steady_clock;

    std::string mLabel;
    std::int64_t mTotal;
    bool mShown;
    Clock::time_point mStart = Clock::now();
    Clock::time_point mLastDraw{};
};

/// Wall-clock time since it was made.
class Stopwatch {
  public:
    double seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - mStart).count();
    }

  private:
    const std::chrono::steady_clock::time_point mStart = std::chrono::steady_clock::now();
};

}  // namespace orbitwalk::tool
