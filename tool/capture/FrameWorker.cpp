#include "capture/FrameWorker.h"

#include <utility>

namespace orbitwalk::tool {

namespace {

/// Handed over and not begun: enough to even out frames that take longer, little memory.
constexpr std::size_t kBehind = 3;

}  // namespace

FrameWorker::FrameWorker(Work work) : mWork(std::move(work)), mThread([this] { run(); }) {}

FrameWorker::~FrameWorker() {
    {
        const std::lock_guard guard(mLock);
        mEnded = true;
    }
    mChanged.notify_all();
    mThread.join();
}

void FrameWorker::take(Frame& frame) {
    {
        std::unique_lock guard(mLock);
        mChanged.wait(guard, [&] { return mEnded || mWaiting.size() < kBehind; });
        rethrowFailure();
        mWaiting.push(std::move(frame));
        frame.clear();
        if (!mServed.empty()) {
            frame = std::move(mServed.front());
            mServed.pop();
        }
    }
    mChanged.notify_all();
}

void FrameWorker::finish() {
    std::unique_lock guard(mLock);
    mFinishing = true;
    mChanged.notify_all();
    mChanged.wait(guard, [&] { return mEnded; });
    rethrowFailure();
}

void FrameWorker::rethrowFailure() const {
    if (mFailure)
        std::rethrow_exception(mFailure);
}

void FrameWorker::run() {
    std::unique_lock guard(mLock);
    while (!mEnded) {
        mChanged.wait(guard, [&] { return mEnded || mFinishing || !mWaiting.empty(); });
        if (mEnded || mWaiting.empty())
            break;
        Frame frame = std::move(mWaiting.front());
        mWaiting.pop();
        mChanged.notify_all();
        guard.unlock();
        std::exception_ptr failure;
        try {
            mWork(frame);
        } catch (...) {
            failure = std::current_exception();
        }
        guard.lock();
        mServed.push(std::move(frame));
        mFailure = failure;
        if (failure)
            break;
    }
    mEnded = true;
    mChanged.notify_all();
}

}  // namespace orbitwalk::tool
