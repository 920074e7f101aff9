#include "engine/FailureFixture.h"

#include <MP4Writer.h>
#include <android/log.h>
#include <pthread.h>
#include <sys/system_properties.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <new>
#include <opencv2/core/mat.hpp>

// By the linker: where the program's own code begins and ends.
extern "C" const char __executable_start, etext;

namespace {

constinit std::atomic<long> allocationsToGo = 0;
constinit std::atomic<bool> failed = false;
constinit std::atomic<bool> threadCreationFails = false;
constinit std::atomic<bool> gateOpen = true;
constinit std::atomic<int> loggedState = 0;
constinit std::atomic<int> loggedCauses = 0;
constinit std::atomic<long> ownAllocations = 0;

void* allocate(std::size_t size, std::size_t alignment) {
    // OpenCV loses a matrix's pixels when the allocation of their header fails, so it never does.
    const bool mayFail = size != sizeof(cv::UMatData);
    if (mayFail && allocationsToGo.load() > 0 && allocationsToGo.fetch_sub(1) == 1) {
        failed = true;
        return nullptr;
    }
    return alignment <= __STDCPP_DEFAULT_NEW_ALIGNMENT__
               ? std::malloc(size == 0 ? 1 : size)
               : std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}

/// OpenCV's allocations come from its own libraries.
bool isOfThisProgram(const void* caller) {
    return caller >= &__executable_start && caller < &etext;
}

void* allocateOrThrow(std::size_t size, const void* caller, std::size_t alignment = 1) {
    ownAllocations += isOfThisProgram(caller);
    if (void* const memory = allocate(size, alignment))
        return memory;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) {
    return allocateOrThrow(size, __builtin_return_address(0));
}
void* operator new[](std::size_t size) {
    return allocateOrThrow(size, __builtin_return_address(0));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocateOrThrow(size, __builtin_return_address(0), static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size, 1);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size, 1);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}

extern "C" {

int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __wrap_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*routine)(void*), void* argument) {
    return threadCreationFails ? EAGAIN
                               : __real_pthread_create(thread, attributes, routine, argument);
}
}

int __android_log_print(int, const char*, const char* format, ...) {
    if (std::strcmp(format, "kelOBWEngine::start-- max frames = %d, engineState=%d") == 0) {
        va_list values;
        va_start(values, format);
        va_arg(values, int);
        loggedState = va_arg(values, int);
        va_end(values);
    }
    if (std::strcmp(format, "%s : cause: %s") == 0)
        ++loggedCauses;
    return 1;
}

int __system_property_get(const char*, char* value) {
    value[0] = '\0';
    return 0;
}

int InitMP4Engine(const char*, const char*, int, int, int, int, int, int, int, int, std::FILE*) {
    return 1;
}

int EncodeFrame(const unsigned char*) {
    gateOpen.wait(false);
    return 1;
}

int DeInitMP4Engine(void) {
    return 1;
}

namespace failure {

void failAllocation(long n) {
    failed = false;
    loggedCauses = 0;
    allocationsToGo = n;
}

bool allocationFailed() {
    allocationsToGo = 0;
    return failed;
}

long allocations() {
    return ownAllocations;
}

int causes() {
    return loggedCauses;
}

void setThreadCreationFails(bool fails) {
    threadCreationFails = fails;
}

void setGateOpen(bool open) {
    gateOpen = open;
    gateOpen.notify_all();
}

int stateOf(kelOBWEngine& engine) {
    engine.start(nullptr);
    return loggedState;
}

}  // namespace failure
