#include "engine/StateLock.h"

#include <cstdlib>

#ifdef ORBITWALK_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

namespace orbitwalk {

void StateLock::lock() {
    if (pthread_mutex_lock(&mMutex) != 0)
        std::abort();
}

void StateLock::unlock() {
    pthread_mutex_unlock(&mMutex);
}

void StateLock::handOver() {
#ifdef ORBITWALK_THREAD_SANITIZER
    __tsan_mutex_pre_unlock(&mMutex, 0);
    __tsan_mutex_post_unlock(&mMutex, 0);
#endif
}

void StateLock::takeOver() {
#ifdef ORBITWALK_THREAD_SANITIZER
    __tsan_mutex_pre_lock(&mMutex, __tsan_mutex_try_lock);
    __tsan_mutex_post_lock(&mMutex, __tsan_mutex_try_lock, 0);
#endif
}

}  // namespace orbitwalk
