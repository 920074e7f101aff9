#pragma once

#include <chrono>

namespace orbitwalk::tool {

/// Runs the stage, adds its wall-clock time to the seconds, and returns its result.
template <typename Stage>
auto timed(double& seconds, Stage&& stage) {
    using Clock = std::chrono::steady_clock;
    struct Addition {
        ~Addition() { seconds += std::chrono::duration<double>(Clock::now() - start).count(); }
        double& seconds;
        Clock::time_point start = Clock::now();
    } const addition{seconds};
    return stage();
}

}  // namespace orbitwalk::tool
