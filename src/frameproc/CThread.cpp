#include "frameproc/CThread.h"

#include <time.h>

namespace vfw {

CThread::~CThread() {
    join();
}

void CThread::stop_() {
    mRunning.store(false);
}

void CThread::stopandwait_() {
    mRunning.store(false);
    join();
}

void CThread::onStart() {}

void CThread::onStop() {}

void CThread::run() {
    while (mRunning.load()) {
        if (!onRun())
            mRunning.store(false);
    }
}

void CThread::start() {
    std::call_once(mStartOnce, &CThread::launch_, this);
}

void CThread::requestStop() {
    if (mThread)
        std::call_once(mStopOnce, [this] { stop_(); });
}

void CThread::requestStopAndWait() {
    if (mThread)
        std::call_once(mStopOnce, [this] { stopandwait_(); });
}

void CThread::join() {
    if (joinable())
        std::call_once(mJoinOnce, &CThread::join_, this);
}

void CThread::detach() {
    if (mThread)
        std::call_once(mDetachOnce, &CThread::detach_, this);
}

bool CThread::joinable() const {
    return mThread && mThread->get_id() != std::thread::id();
}

void CThread::sleep(int ms) {
    const std::timespec duration = timespecOfMilliseconds(ms);
    nanosleep(&duration, nullptr);
}

void CThread::lock() {
    mLock.lock();
}

void CThread::unlock() {
    mLock.unlock();
}

void CThread::launch_() {
    // Set before the thread exists, so that a stop requested before it has begun is not lost.
    mRunning.store(true);
    mThread = std::make_unique<std::thread>([this] {
        onStart();
        run();
        onStop();
    });
}

void CThread::join_() {
    mThread->join();
}

void CThread::detach_() {
    mThread->detach();
}

std::timespec timespecOfMilliseconds(int ms) {
    return {ms / 1000, (ms % 1000) * 1000000};
}

}  // namespace vfw
