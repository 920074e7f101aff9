#pragma once

#include <mutex>

/// @file
/// What protects what, in words that clang checks (-Wthread-safety). Other compilers skip them.

#if defined(__clang__)
#define ORBITWALK_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define ORBITWALK_THREAD_ATTRIBUTE(x)
#endif

/// A class whose objects are locks, and one whose objects hold a lock for a scope.
#define CAPABILITY(name) ORBITWALK_THREAD_ATTRIBUTE(capability(name))
#define SCOPED_CAPABILITY ORBITWALK_THREAD_ATTRIBUTE(scoped_lockable)
/// A member that is touched with the lock held alone.
#define GUARDED_BY(lock) ORBITWALK_THREAD_ATTRIBUTE(guarded_by(lock))
/// A function that is called with the lock held, that takes it, that gives it back.
#define REQUIRES(...) ORBITWALK_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define ACQUIRE(...) ORBITWALK_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define RELEASE(...) ORBITWALK_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
/// A function that takes the lock itself, so that its caller must not hold it.
#define EXCLUDES(...) ORBITWALK_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))

namespace orbitwalk {

/// std::mutex with these words, which the standard library's lacks.
class CAPABILITY("mutex") Mutex {
  public:
    void lock() ACQUIRE() { mMutex.lock(); }
    void unlock() RELEASE() { mMutex.unlock(); }

  private:
    std::mutex mMutex;
};

/// Holds a Mutex for a scope.
class SCOPED_CAPABILITY MutexLock {
  public:
    explicit MutexLock(Mutex& mutex) ACQUIRE(mutex) : mMutex(mutex) { mMutex.lock(); }
    ~MutexLock() RELEASE() { mMutex.unlock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

  private:
    Mutex& mMutex;
};

}  // namespace orbitwalk
