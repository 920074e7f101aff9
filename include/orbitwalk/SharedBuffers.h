#pragma once

/// @file
/// A ring of fixed-size buffers between one writer and one reader thread, each buffer guarded by a
/// one-slot mailbox with timed waits. The engine itself does not use it.

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

#include "orbitwalk/Export.h"

/// The five operations of a shared buffer. Addresses are returned as integers; 0 means that the
/// wait timed out. Not deletable through this interface.
class OBW_API CSharedBufferInterface {
  public:
    virtual std::intptr_t lockForReading() = 0;
    virtual void unlockForWriting() = 0;
    virtual std::intptr_t lockForWriting() = 0;
    virtual void unlockForReading() = 0;
    virtual int size() = 0;

  protected:
    ~CSharedBufferInterface() = default;
};

/// A mailbox of one slot: a full-or-empty flag with timed waits on either side. Any number of
/// threads. The unlocks set the flag and wake the side opposite to what their names suggest for a
/// mailbox: a write's unlock marks the slot empty and wakes writers. All operations throw
/// std::system_error when the lock fails.
class OBW_API CSharedMemory {
  public:
    explicit CSharedMemory(unsigned int timeoutMs);
    CSharedMemory(unsigned int readTimeoutMs, unsigned int writeTimeoutMs);
    virtual ~CSharedMemory();
    CSharedMemory(const CSharedMemory&) = delete;
    CSharedMemory& operator=(const CSharedMemory&) = delete;

    /// Waits until the slot is empty, at most the write limit. @return whether it is.
    bool lockForWriting();
    /// Waits until the slot is full, at most the read limit. @return whether it is.
    bool lockForReading();
    /// Marks the slot empty and wakes a writer.
    void unlockForWriting();
    /// Marks the slot full and wakes a reader.
    void unlockForReading();

  private:
    std::mutex mLock;
    std::atomic<bool> mFull{false};
    std::condition_variable mWriteCond;
    std::condition_variable mReadCond;
    std::uint32_t mReadTimeoutMs;
    std::uint32_t mWriteTimeoutMs;
};

/// The ring. The indices are not locked: one writer thread and one reader thread. The first buffer
/// handed out to either is number 1. The buffers' contents start undefined.
class OBW_API CSharedBufferQueue : public CSharedBufferInterface {
  public:
    /// @param bufferSize  bytes per buffer, at least 1.
    /// @param count       number of buffers, at least 1.
    /// @throws std::invalid_argument for a size or count below 1, std::bad_alloc, also for a total
    ///         that does not fit the address space.
    CSharedBufferQueue(int bufferSize, int count);
    /// @param timeoutMs  wait limit of every slot in milliseconds; 8 without it.
    CSharedBufferQueue(int bufferSize, int count, unsigned int timeoutMs);
    CSharedBufferQueue(const CSharedBufferQueue&) = delete;
    CSharedBufferQueue& operator=(const CSharedBufferQueue&) = delete;

    /// Locks the buffer after the last one locked. @return its address, or 0 when the wait timed
    /// out, which leaves the turn at the same buffer.
    std::intptr_t lockForReading() override;
    void unlockForWriting() override;
    /// As lockForReading.
    std::intptr_t lockForWriting() override;
    void unlockForReading() override;
    int size() override;  ///< Bytes per buffer.
    virtual ~CSharedBufferQueue();

  private:
    /// Optional, so that a slot can be rebuilt in place; every one has a value.
    std::unique_ptr<std::optional<CSharedMemory>[]> mSlots;
    std::int32_t mWriteIndex = 0;
    std::int32_t mReadIndex = 0;
    std::unique_ptr<unsigned char[]> mData;
    std::int32_t mBufferSize;
    std::int32_t mCount;
};
