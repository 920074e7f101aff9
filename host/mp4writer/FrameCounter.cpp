#include "FrameCounter.h"

#include <chrono>

namespace orbitwalk::mp4writer {

void FrameCounter::reset() {
    const std::lock_guard guard(mLock);
    mCount = 0;
}

void FrameCounter::increment() {
    const std::lock_guard guard(mLock);
    ++mCount;
    mGrown.notify_all();
}

int FrameCounter::waitFor(int frames, int timeoutMs) {
    std::unique_lock guard(mLock);
    mGrown.wait_for(guard, std::chrono::milliseconds(timeoutMs), [&] { return mCount >= frames; });
    return mCount;
}

}  // namespace orbitwalk::mp4writer
