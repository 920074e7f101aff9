#pragma once

#include <condition_variable>
#include <mutex>

namespace orbitwalk::mp4writer {

/// A count that other threads can wait for. Any thread.
class FrameCounter {
  public:
    void reset();
    void increment();
    /// Waits until the count is at least `frames` or the time is over. @return the count then.
    int waitFor(int frames, int timeoutMs);

  private:
    std::mutex mLock;
    std::condition_variable mGrown;
    int mCount = 0;
};

}  // namespace orbitwalk::mp4writer
