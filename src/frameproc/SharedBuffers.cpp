#include "orbitwalk/SharedBuffers.h"

#include <chrono>
#include <cstddef>
#include <limits>
#include <new>
#include <stdexcept>

namespace {

constexpr unsigned int kDefaultTimeoutMs = 8;

std::int32_t atLeastOne(int value, const char* complaint) {
    if (value < 1)
        throw std::invalid_argument(complaint);
    return value;
}

std::size_t totalBytes(std::int32_t bufferSize, std::int32_t count) {
    const std::int64_t total = std::int64_t{bufferSize} * count;
    if (total > std::numeric_limits<std::ptrdiff_t>::max())
        throw std::bad_alloc();
    return static_cast<std::size_t>(total);
}

std::int32_t next(std::int32_t index, std::int32_t count) {
    return static_cast<std::int32_t>((std::int64_t{index} + 1) % count);
}

std::intptr_t addressOf(const unsigned char* data, std::int32_t bufferSize, std::int32_t index) {
    return reinterpret_cast<std::intptr_t>(data + static_cast<std::size_t>(index) * bufferSize);
}

}  // namespace

CSharedMemory::CSharedMemory(unsigned int timeoutMs) : CSharedMemory(timeoutMs, timeoutMs) {}

CSharedMemory::CSharedMemory(unsigned int readTimeoutMs, unsigned int writeTimeoutMs)
    : mReadTimeoutMs(readTimeoutMs), mWriteTimeoutMs(writeTimeoutMs) {}

CSharedMemory::~CSharedMemory() = default;

bool CSharedMemory::lockForWriting() {
    std::unique_lock guard(mLock);
    return mWriteCond.wait_for(guard, std::chrono::milliseconds(mWriteTimeoutMs),
                               [this] { return !mFull; });
}

bool CSharedMemory::lockForReading() {
    std::unique_lock guard(mLock);
    return mReadCond.wait_for(guard, std::chrono::milliseconds(mReadTimeoutMs),
                              [this] { return mFull.load(); });
}

void CSharedMemory::unlockForWriting() {
    const std::lock_guard guard(mLock);
    mFull = false;
    mWriteCond.notify_one();
}

void CSharedMemory::unlockForReading() {
    const std::lock_guard guard(mLock);
    mFull = true;
    mReadCond.notify_one();
}

CSharedBufferQueue::CSharedBufferQueue(int bufferSize, int count)
    : mBufferSize(atLeastOne(bufferSize, "buffer size below 1")),
      mCount(atLeastOne(count, "buffer count below 1")) {
    mSlots = std::make_unique<std::optional<CSharedMemory>[]>(static_cast<std::size_t>(mCount));
    for (std::int32_t i = 0; i < mCount; ++i)
        mSlots[i].emplace(kDefaultTimeoutMs);
    mData.reset(new unsigned char[totalBytes(mBufferSize, mCount)]);
}

CSharedBufferQueue::CSharedBufferQueue(int bufferSize, int count, unsigned int timeoutMs)
    : CSharedBufferQueue(bufferSize, count) {
    for (std::int32_t i = 0; i < mCount; ++i)
        mSlots[i].emplace(timeoutMs);
}

CSharedBufferQueue::~CSharedBufferQueue() = default;

std::intptr_t CSharedBufferQueue::lockForReading() {
    const std::int32_t index = next(mReadIndex, mCount);
    if (!mSlots[index]->lockForReading())
        return 0;
    mReadIndex = index;
    return addressOf(mData.get(), mBufferSize, index);
}

std::intptr_t CSharedBufferQueue::lockForWriting() {
    const std::int32_t index = next(mWriteIndex, mCount);
    if (!mSlots[index]->lockForWriting())
        return 0;
    mWriteIndex = index;
    return addressOf(mData.get(), mBufferSize, index);
}

void CSharedBufferQueue::unlockForWriting() {
    mSlots[mWriteIndex]->unlockForWriting();
}

void CSharedBufferQueue::unlockForReading() {
    mSlots[mReadIndex]->unlockForReading();
}

int CSharedBufferQueue::size() {
    return mBufferSize;
}
