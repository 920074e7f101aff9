#pragma once

#include <pthread.h>

#include <cstdlib>

/// Holds the engine's lock for a scope. The lock is a plain pthread mutex, so that stop can leave
/// it locked for the post-processing thread, which unlocks it. A lock that fails means a destroyed
/// or damaged engine, and the process aborts.
class StateLockGuard {
  public:
    explicit StateLockGuard(pthread_mutex_t& mutex) : mMutex(&mutex) {
        if (pthread_mutex_lock(mMutex) != 0)
            std::abort();
    }
    ~StateLockGuard() {
        if (mMutex != nullptr)
            pthread_mutex_unlock(mMutex);
    }
    StateLockGuard(const StateLockGuard&) = delete;
    StateLockGuard& operator=(const StateLockGuard&) = delete;

    /// Unlocks before the scope ends.
    void unlock() {
        pthread_mutex_unlock(mMutex);
        mMutex = nullptr;
    }
    /// Leaves the mutex locked: unlocking it is another thread's task from now on.
    void handOver() { mMutex = nullptr; }

  private:
    pthread_mutex_t* mMutex;
};
