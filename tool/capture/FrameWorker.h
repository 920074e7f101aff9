#pragma once

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <queue>
#include <span>
#include <thread>
#include <vector>

namespace orbitwalk::tool {

/// Works on frames in their order, on a thread of its own, a few frames behind who hands them over.
/// Handed over by one thread.
class FrameWorker {
  public:
    using Work = std::function<void(std::span<const std::uint8_t> frame)>;

    explicit FrameWorker(Work work);
    /// Leaves what was handed over and not begun.
    ~FrameWorker();
    FrameWorker(const FrameWorker&) = delete;
    FrameWorker& operator=(const FrameWorker&) = delete;

    /// Waits while the work is too far behind. @param frame  taken; memory that served comes back.
    /// @throws what the work on an earlier frame threw.
    void take(std::vector<std::uint8_t>& frame);
    /// Waits until all that was handed over is done. @throws as take.
    void finish();

  private:
    using Frame = std::vector<std::uint8_t>;

    void run();
    void rethrowFailure() const;

    const Work mWork;
    std::mutex mLock;
    std::condition_variable mChanged;
    // All that follows is guarded by mLock.
    std::queue<Frame> mWaiting;
    std::queue<Frame> mServed;
    bool mFinishing = false;  ///< Nothing more will be handed over.
    bool mEnded = false;      ///< Nothing more will be worked on.
    std::exception_ptr mFailure;
    std::thread mThread;  ///< Last: it uses all of the above.
};

}  // namespace orbitwalk::tool
