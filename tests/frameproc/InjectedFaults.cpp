#include "frameproc/InjectedFaults.h"

#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> failingBytes{0};
std::atomic<int> live{0};
std::atomic<bool> semaphoreFails{false};

std::size_t setDefaultStackSize(std::size_t bytes) {
    pthread_attr_t attributes;
    std::size_t before = 0;
    pthread_getattr_default_np(&attributes);
    pthread_attr_getstacksize(&attributes, &before);
    pthread_attr_setstacksize(&attributes, bytes);
    pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
    return before;
}

}  // namespace

void* operator new[](std::size_t bytes) {
    void* block = bytes != 0 && bytes == failingBytes ? nullptr : std::malloc(bytes);
    if (block == nullptr)
        throw std::bad_alloc();
    ++live;
    return block;
}

void operator delete[](void* block) noexcept {
    if (block != nullptr)
        --live;
    std::free(block);
}

void operator delete[](void* block, std::size_t) noexcept {
    operator delete[](block);
}

int sem_init(sem_t* semaphore, int shared, unsigned int value) {
    if (semaphoreFails) {
        errno = ENOSPC;
        return -1;
    }
    using Init = int (*)(sem_t*, int, unsigned int);
    static const auto real = reinterpret_cast<Init>(dlsym(RTLD_NEXT, "sem_init"));
    return real(semaphore, shared, value);
}

namespace injected_faults {

void failArrayAllocationsOf(std::size_t bytes) {
    failingBytes = bytes;
}

int liveArrays() {
    return live;
}

void failSemaphoreInit(bool fails) {
    semaphoreFails = fails;
}

// Three quarters of what an address can name.
NoThreads::NoThreads()
    : mStackSize(setDefaultStackSize(std::size_t{3} << (8 * sizeof(std::size_t) - 2))) {}

NoThreads::~NoThreads() {
    setDefaultStackSize(mStackSize);
}

}  // namespace injected_faults
