#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace orbitwalk::tool {

/// A line on stderr that shows how far long work is; silent where stderr is no terminal. Redraws at
/// most ten times a second.
class ProgressBar {
  public:
    /// @param total  number of steps, 0 when unknown: then only the count and the rate are shown.
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

}  // namespace orbitwalk::tool
