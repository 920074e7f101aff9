#pragma once

#include <atomic>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include "frameproc/QueueSync.h"
#include "frameproc/RingIndex.h"

/// A ring of frame slots between one producer and one consumer thread, filled and read in place.
/// It never drops a frame and never blocks the producer: instead of becoming full it grows by one
/// slot, without an upper bound. What becomes of frames:
///   accepting  every committed frame reaches the consumer, in order;
///   draining   after signalEndOfFrames the consumer finishes at the marker, behind all earlier
///              frames; later ones are freed with the queue;
///   aborted    after signalEmergencyExit the consumer finishes at its next readLock.
///
/// The end marker is a slot that begins with "terminate" and a NUL; a real frame that begins so
/// ends the stream too.
///
/// Lock and semaphore failures throw std::runtime_error, allocation failures std::bad_alloc.
/// Destroyed when neither thread uses it any more. T is unsigned char.
template <typename T>
class SPMCQueue {
  public:
    /// @param frameSize  bytes per slot, enough for the end marker (10).
    /// @param numFrames  slots at first, at least 1.
    /// @param inputPool  memory for these slots, numFrames * frameSize bytes, which stays the
    ///                   caller's and must outlive the queue; null: a zeroed block of the queue's.
    /// @throws std::length_error for sizes outside these or a ring beyond 2^31 - 1 bytes.
    SPMCQueue(std::int32_t frameSize, std::int32_t numFrames, T* inputPool = nullptr);
    ~SPMCQueue();
    SPMCQueue(const SPMCQueue&) = delete;
    SPMCQueue& operator=(const SPMCQueue&) = delete;

    /// Producer: the slot to fill next, frameSize bytes. Never null, never blocks; the same slot
    /// again until it is committed. Contents are undefined. Unchanged ring when it throws.
    T* writeLock();
    /// Producer: commits the slot from writeLock.
    void writeUnlock();

    /// Consumer: waits for a committed frame. @return its slot, or null: finish.
    T* readLock();
    /// Consumer: releases the slot from readLock.
    void readUnlock();

    /// Producer: commits the end marker. When that fails it throws, and the consumer finishes as
    /// after signalEmergencyExit: its thread can be joined in every case.
    void signalEndOfFrames();
    /// Lets the consumer finish without draining. Does not wake it: an end marker does.
    void signalEmergencyExit();

  private:
    /// Leaves the caller's pool alone.
    struct BlockDeleter {
        bool isOwned = true;
        void operator()(T* block) const {
            if (isOwned)
                delete[] block;
        }
    };
    using Block = std::unique_ptr<T[], BlockDeleter>;

    T* allocateRing(T* inputPool);
    orbitwalk::ring::Positions positions() const;
    T* grow();

    const std::int32_t mFrameSize;
    std::int32_t mNumFrames;
    static constexpr std::int32_t mReservedSlots = 1;
    std::optional<orbitwalk::QueueSemaphore>
        mSem;  ///< Committed frames that the consumer has not yet taken.

    /// Guards the counters and the ring, never the slots' contents.
    orbitwalk::QueueLock mLock;
    std::vector<T*> mBuffers;
    std::vector<Block> mAllocations;
    std::int32_t mWriteCount = 0;
    std::int32_t mReadIndex = 0;  ///< Written by the consumer under the shared lock.
    std::int32_t mPending = 0;    ///< Lowered by the consumer under the shared lock.
    std::atomic<bool> mEmergencyExit{false};
    /// Least head-room since construction or the last growth.
    std::int32_t mHeadRoom = std::numeric_limits<std::int32_t>::max();
    const bool usingInputBufferPool;
    T* const pInputBufferPool;
};

extern template class SPMCQueue<unsigned char>;
