#pragma once

#include <atomic>
#include <ctime>
#include <memory>
#include <mutex>
#include <thread>

namespace vfw {

/// Base of the worker threads. A subclass does one unit of work per onRun; every control operation
/// is guarded by a once-flag, so that only its first call has an effect. The thread runs at most
/// once; there is no restart.
///
/// start, the stop requests, join and detach are called from controlling threads, never from the
/// worker. Failures of the thread primitives throw std::system_error; after a failed start there is
/// no thread and the object can be destroyed.
///
/// A subclass calls join() in its own destructor: the base's comes after the subclass's overrides
/// and members are gone.
class CThread {
  public:
    CThread() = default;
    /// Waits for a thread that is neither joined nor detached.
    virtual ~CThread();
    CThread(const CThread&) = delete;
    CThread& operator=(const CThread&) = delete;

  protected:
    /// Clears the run flag: onRun is not called again.
    virtual void stop_();
    /// Clears the run flag and joins.
    virtual void stopandwait_();
    /// First on the worker.
    virtual void onStart();
    /// Last on the worker.
    virtual void onStop();
    /// One unit of work. @return whether to be called again.
    virtual bool onRun() = 0;

    /// Calls onRun while the run flag is set, which is checked before each call.
    void run();

  public:
    void start();
    /// Ends the run loop after the current unit, without waiting. Before start it does nothing.
    void requestStop();
    /// Ends the run loop and waits for the worker. Shares its once-flag with requestStop: whichever
    /// is called first wins, so after a requestStop this neither stops nor waits.
    void requestStopAndWait();
    void join();
    /// The object must outlive the detached thread.
    void detach();
    bool joinable() const;

    static void sleep(int ms);

    /// A mutex for the subclass's use. @throws std::system_error
    void lock();
    void unlock();

  private:
    void launch_();
    void join_();
    void detach_();

    std::unique_ptr<std::thread> mThread;
    std::mutex mLock;
    std::atomic<bool> mRunning{false};
    std::once_flag mStartOnce;
    std::once_flag mDetachOnce;
    std::once_flag mJoinOnce;
    std::once_flag mStopOnce;
};

/// Whole seconds and remaining nanoseconds of a time in milliseconds.
std::timespec timespecOfMilliseconds(int ms);

}  // namespace vfw
