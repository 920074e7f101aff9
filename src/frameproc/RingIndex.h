#pragma once

#include <cstddef>
#include <cstdint>

/// The arithmetic of a growable ring of slots between one producer and one consumer. Values in,
/// values out.
namespace orbitwalk::ring {

/// Positions count up without wrapping; a position's slot is its remainder by the length.
struct Positions {
    std::int32_t length;      ///< Slots in the ring.
    std::int32_t writeCount;  ///< Position of the slot to be written next.
    std::int32_t readIndex;   ///< Position of the slot to be read next.
    std::int32_t pending;     ///< Slots committed and not yet released by the consumer.

    friend bool operator==(const Positions&, const Positions&) = default;
};

/// How a ring grows by one slot at the write position without changing the order of reading:
/// rotate the slots left, append the new one, go on from `grown`.
struct Growth {
    std::size_t rotation;  ///< Slots to rotate left by: the old write slot becomes slot 0.
    bool cornerCase;       ///< Read and write position coincided: a ring of one slot.
    Positions grown;       ///< writeCount is the new, last slot; pending is unchanged.

    friend bool operator==(const Growth&, const Growth&) = default;
};

/// Bytes of a ring.
/// @throws std::length_error for no slots, for slots smaller than minSlotBytes, or for a total that
///         does not fit a signed 32-bit integer.
std::size_t totalBytes(std::int32_t slotBytes, std::int32_t slots, std::int32_t minSlotBytes);

/// Slot of a position; unsigned remainder.
std::size_t slotOf(std::int32_t position, std::int32_t length);

/// Whether the producer's next slot would be the last that is free, which stays reserved: the
/// consumer may still be reading the slot after it.
bool isFull(const Positions& ring, std::int32_t reservedSlots);

Growth growByOne(const Positions& ring);

}  // namespace orbitwalk::ring
