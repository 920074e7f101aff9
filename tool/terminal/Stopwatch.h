#pragma once

#include <chrono>

namespace orbitwalk::tool {

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
