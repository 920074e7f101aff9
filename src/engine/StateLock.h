#pragma once

#include <pthread.h>

#include "common/ThreadSafety.h"

namespace orbitwalk {

/// The lock of the engine's operations: a plain pthread mutex of default attributes, which has no
/// owner, so that stop can leave it locked and the post-processing thread can unlock it. Analysers
/// that track owners are told of that hand-over. A lock that fails means a destroyed or damaged
/// engine, and the process aborts.
class CAPABILITY("mutex") StateLock {
  public:
    void lock() ACQUIRE();
    void unlock() RELEASE();
    /// Gives up the lock as it is, locked, for another thread's takeOver. Without one it stays
    /// locked for good.
    void handOver() RELEASE();
    void takeOver() ACQUIRE();

  private:
    pthread_mutex_t mMutex = PTHREAD_MUTEX_INITIALIZER;
};

/// Holds the lock for a scope, and gives it back once.
class SCOPED_CAPABILITY StateLockGuard {
  public:
    /// Tells that the lock was handed over to this thread.
    struct TakeOver {};

    explicit StateLockGuard(StateLock& lock) ACQUIRE(lock) : mLock(&lock) { lock.lock(); }
    StateLockGuard(StateLock& lock, TakeOver) ACQUIRE(lock) : mLock(&lock) { lock.takeOver(); }
    ~StateLockGuard() RELEASE() {
        if (mLock != nullptr)
            mLock->unlock();
    }
    StateLockGuard(const StateLockGuard&) = delete;
    StateLockGuard& operator=(const StateLockGuard&) = delete;

    /// Unlocks before the scope ends.
    void unlock() RELEASE() {
        mLock->unlock();
        mLock = nullptr;
    }
    void handOver() RELEASE() {
        mLock->handOver();
        mLock = nullptr;
    }

  private:
    StateLock* mLock;  ///< Null once it was given back.
};

}  // namespace orbitwalk
