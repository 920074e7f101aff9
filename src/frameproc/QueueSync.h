#pragma once

#include <pthread.h>
#include <semaphore.h>

namespace orbitwalk {

/// The frame queue's reader-writer lock, for std::lock_guard and std::shared_lock. A lock that
/// fails throws std::runtime_error with the queue's text.
class QueueLock {
  public:
    QueueLock() = default;
    ~QueueLock();
    QueueLock(const QueueLock&) = delete;
    QueueLock& operator=(const QueueLock&) = delete;

    void lock();
    void unlock();
    void lock_shared();
    void unlock_shared();

  private:
    pthread_rwlock_t mLock = PTHREAD_RWLOCK_INITIALIZER;
};

/// The frame queue's counting semaphore, 0 at first.
class QueueSemaphore {
  public:
    /// @throws std::runtime_error
    QueueSemaphore();
    ~QueueSemaphore();
    QueueSemaphore(const QueueSemaphore&) = delete;
    QueueSemaphore& operator=(const QueueSemaphore&) = delete;

    /// @return false when the count is at its limit.
    bool post();
    /// Blocks until the count can be lowered; a signal handler does not end the wait.
    /// @return false when the wait failed.
    bool wait();

  private:
    sem_t mSemaphore;
};

}  // namespace orbitwalk
