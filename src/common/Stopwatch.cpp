#include "common/Stopwatch.h"

#include "common/Log.h"

namespace orbitwalk {

float elapsedMilliseconds(const timeval& from, const timeval& to) {
    auto seconds = to.tv_sec - from.tv_sec;
    auto microseconds = to.tv_usec - from.tv_usec;
    if (microseconds < 0) {
        seconds -= 1;
        microseconds += 1000000;
    }
    return static_cast<float>(microseconds) / 1000.0f + static_cast<float>(seconds) * 1000.0f;
}

Stopwatch::Stopwatch() {
    gettimeofday(&mStart, nullptr);
}

void Stopwatch::log(const char* tag) const {
    if (!isHeard(ANDROID_LOG_VERBOSE, tag))
        return;
    timeval now;
    gettimeofday(&now, nullptr);
    __android_log_print(ANDROID_LOG_VERBOSE, tag, "Time Elapsed : %f ms\n",
                        static_cast<double>(elapsedMilliseconds(mStart, now)));
}

}  // namespace orbitwalk
