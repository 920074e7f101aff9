#include "media/FramesAhead.h"

#include <chrono>
#include <utility>

namespace orbitwalk::media {

namespace {

/// Read and not taken yet: enough to even out pictures that take longer, little memory.
constexpr std::size_t kAhead = 2;

}  // namespace

FramesAhead::FramesAhead(VideoReader& video, std::int64_t most)
    : mVideo(video), mThread([this, most] { run(most); }) {}

FramesAhead::~FramesAhead() {
    {
        const std::lock_guard guard(mLock);
        mAbandoned = true;
        // A reader that is through must not fail later for having been asked to stop.
        if (!mEnded)
            mVideo.interrupt();
    }
    mChanged.notify_all();
    mThread.join();
}

bool FramesAhead::next(std::vector<std::uint8_t>& i420) {
    std::unique_lock guard(mLock);
    mChanged.wait(guard, [&] { return mEnded || !mRead.empty(); });
    if (mRead.empty()) {
        if (mFailure)
            std::rethrow_exception(mFailure);
        return false;
    }
    mEmpty.push(std::exchange(i420, std::move(mRead.front())));
    mRead.pop();
    mChanged.notify_all();
    return true;
}

double FramesAhead::seconds() const {
    const std::lock_guard guard(mLock);
    return mSeconds;
}

bool FramesAhead::takeEmpty(Frame& frame) {
    std::unique_lock guard(mLock);
    mChanged.wait(guard, [&] { return mAbandoned || mRead.size() < kAhead; });
    if (!mEmpty.empty()) {
        frame = std::move(mEmpty.front());
        mEmpty.pop();
    }
    return !mAbandoned;
}

void FramesAhead::run(std::int64_t most) {
    using Clock = std::chrono::steady_clock;
    bool more = true;
    for (std::int64_t read = 0; more; ++read) {
        Frame frame;
        std::exception_ptr failure;
        more = read < most && takeEmpty(frame);
        const Clock::time_point start = Clock::now();
        try {
            more = more && mVideo.read(frame);
        } catch (...) {
            failure = std::current_exception();
            more = false;
        }
        const std::lock_guard guard(mLock);
        mSeconds += std::chrono::duration<double>(Clock::now() - start).count();
        mFailure = failure;
        mEnded = !more;
        if (more)
            mRead.push(std::move(frame));
        mChanged.notify_all();
    }
}

}  // namespace orbitwalk::media
