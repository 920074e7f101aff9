#include "frameproc/SPMCQueue.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <shared_mutex>
#include <stdexcept>

#include "common/Log.h"

namespace {

constexpr char kLogTag[] = "WR_SPMCQueue";
constexpr char kEndMarker[] = "terminate";

/// Asks for huge pages, before the block is first touched: page by page, zeroing the ring of a
/// 1080p capture waits for eleven thousand faults. Where there are none, nothing changes.
void preferHugePages(unsigned char* block, std::size_t size) {
    constexpr std::size_t kWorthIt = 4 << 20;
    if (size < kWorthIt)
        return;
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t lead = -reinterpret_cast<std::uintptr_t>(block) % page;
    madvise(block + lead, (size - lead) / page * page, MADV_HUGEPAGE);
}

/// Freed by `delete[]`.
unsigned char* zeroedBlock(std::size_t size) {
    auto* const block = new unsigned char[size];
    preferHugePages(block, size);
    std::memset(block, 0, size);
    return block;
}

}  // namespace

template <typename T>
SPMCQueue<T>::SPMCQueue(std::int32_t frameSize, std::int32_t numFrames, T* inputPool)
    : mFrameSize(frameSize),
      mNumFrames(numFrames),
      usingInputBufferPool(inputPool != nullptr),
      pInputBufferPool(inputPool) {
    T* base = allocateRing(inputPool);
    mBuffers.reserve(static_cast<std::size_t>(numFrames));
    for (std::int32_t i = 0; i < numFrames; ++i, base += frameSize)
        mBuffers.push_back(base);
    mSem.emplace();
}

template <typename T>
T* SPMCQueue<T>::allocateRing(T* inputPool) {
    const std::size_t totalSize =
        orbitwalk::ring::totalBytes(mFrameSize, mNumFrames, sizeof kEndMarker);
    mAllocations.reserve(16);
    logInfo("SPMCQueue buffer alloc : totalSize=%d, mFrameSize=%d, mNumFrames=%d",
            static_cast<int>(totalSize), mFrameSize, mNumFrames);
    if (usingInputBufferPool) {
        mAllocations.push_back(Block(inputPool, BlockDeleter{.isOwned = false}));
        logInfo("SPMCQueue use input buffer pool =%p", static_cast<void*>(inputPool));
    } else {
        mAllocations.push_back(Block(zeroedBlock(totalSize)));
        logInfo("SPMCQueue buffer - done memset");
        logInfo("SPMCQueue buffer alloc done : buf=%p",
                static_cast<void*>(mAllocations.back().get()));
    }
    return mAllocations.back().get();
}

template <typename T>
SPMCQueue<T>::~SPMCQueue() {
    logInfo(
        "SPMCQueue : ~~SPMCQueue - usingInputBufferPool=%d pInputBufferPool = %p, "
        "total buffers = %d",
        usingInputBufferPool, static_cast<void*>(pInputBufferPool),
        static_cast<int>(mAllocations.size()));
    auto block = mAllocations.begin();
    if (usingInputBufferPool) {
        logInfo("SPMCQueue : ~~SPMCQueue -  using Buffer Pool : don not free first buffer");
        ++block;
    }
    logInfo("SPMCQueue : ~~SPMCQueue - free buffers");
    for (; block != mAllocations.end(); ++block) {
        logInfo("SPMCQueue : ~~SPMCQueue - free buffer = %p", static_cast<void*>(block->get()));
        block->reset();
    }
    logInfo("SPMCQueue head-room %d for %d length", mHeadRoom, mNumFrames);
}

template <typename T>
orbitwalk::ring::Positions SPMCQueue<T>::positions() const {
    return {mNumFrames, mWriteCount, mReadIndex, mPending};
}

template <typename T>
T* SPMCQueue<T>::writeLock() {
    const std::lock_guard guard(mLock);
    mHeadRoom = std::min(mHeadRoom, mNumFrames - mPending);
    if (orbitwalk::ring::isFull(positions(), mReservedSlots))
        return grow();
    return mBuffers[orbitwalk::ring::slotOf(mWriteCount, mNumFrames)];
}

template <typename T>
T* SPMCQueue<T>::grow() {
    logInfo("SPMCQueue resizing from %d length", mNumFrames);
    // Everything that can fail comes before the first change to the ring.
    mBuffers.reserve(mBuffers.size() + 1);
    mAllocations.push_back(Block(new T[static_cast<std::size_t>(mFrameSize)]));
    T* const slot = mAllocations.back().get();
    logInfo("SPMCQueue new buffer = %p ", static_cast<void*>(slot));

    mHeadRoom = std::numeric_limits<std::int32_t>::max();
    const orbitwalk::ring::Growth growth = orbitwalk::ring::growByOne(positions());
    if (growth.cornerCase)
        logInfo("SPMCQueue adjusting corner case tail for %d", mPending);
    std::rotate(mBuffers.begin(), mBuffers.begin() + static_cast<std::ptrdiff_t>(growth.rotation),
                mBuffers.end());
    mBuffers.push_back(slot);
    mReadIndex = growth.grown.readIndex;
    mWriteCount = growth.grown.writeCount;
    mNumFrames = growth.grown.length;
    return slot;
}

template <typename T>
void SPMCQueue<T>::writeUnlock() {
    const std::lock_guard guard(mLock);
    ++mWriteCount;
    ++mPending;
    if (!mSem->post())
        throw std::runtime_error("SPMCQueue: sem post failed");
}

template <typename T>
T* SPMCQueue<T>::readLock() {
    if (!mSem->wait() || mEmergencyExit.load())
        return nullptr;
    std::shared_lock guard(mLock);
    T* const slot = mBuffers[orbitwalk::ring::slotOf(mReadIndex, mNumFrames)];
    guard.unlock();
    // The marker first, then the null test: a slot is never null.
    if (std::strcmp(reinterpret_cast<const char*>(slot), kEndMarker) == 0 || slot == nullptr)
        return nullptr;
    return slot;
}

template <typename T>
void SPMCQueue<T>::readUnlock() {
    // Shared, although it writes: the only consumer is still excluded from the producer's hold.
    const std::shared_lock guard(mLock);
    ++mReadIndex;
    --mPending;
}

template <typename T>
void SPMCQueue<T>::signalEndOfFrames() {
    try {
        std::memcpy(writeLock(), kEndMarker, sizeof kEndMarker);
        writeUnlock();
    } catch (...) {
        // A consumer that waits for a marker which never comes could not be joined.
        signalEmergencyExit();
        mSem->post();
        throw;
    }
    logInfo("SPMCQueue signalling end of frames");
}

template <typename T>
void SPMCQueue<T>::signalEmergencyExit() {
    mEmergencyExit.store(true);
}

template class SPMCQueue<unsigned char>;
