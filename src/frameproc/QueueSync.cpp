#include "frameproc/QueueSync.h"

#include <cerrno>
#include <stdexcept>

namespace orbitwalk {

QueueLock::~QueueLock() {
    pthread_rwlock_destroy(&mLock);
}

void QueueLock::lock() {
    if (pthread_rwlock_wrlock(&mLock) != 0)
        throw std::runtime_error("Failed to acquire write lock");
}

void QueueLock::unlock() {
    pthread_rwlock_unlock(&mLock);
}

void QueueLock::lock_shared() {
    if (pthread_rwlock_rdlock(&mLock) != 0)
        throw std::runtime_error("Failed to acquire read lock");
}

void QueueLock::unlock_shared() {
    pthread_rwlock_unlock(&mLock);
}

QueueSemaphore::QueueSemaphore() {
    if (sem_init(&mSemaphore, 0, 0) != 0)
        throw std::runtime_error("SPMCQueue: failed to init semaphore");
}

QueueSemaphore::~QueueSemaphore() {
    sem_destroy(&mSemaphore);
}

bool QueueSemaphore::post() {
    return sem_post(&mSemaphore) == 0;
}

bool QueueSemaphore::wait() {
    int result;
    do
        result = sem_wait(&mSemaphore);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

}  // namespace orbitwalk
