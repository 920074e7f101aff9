#include "frameproc/RingIndex.h"

#include <limits>
#include <stdexcept>

namespace orbitwalk::ring {

namespace {

/// Where the read slot r stands once the ring of L slots has been rotated left by w.
std::int32_t rebasedReadIndex(std::int32_t r, std::int32_t w, const Positions& ring) {
    if (w > r)
        return ring.length - w + r;
    if (w < r)
        return r - w;
    // All slots or none are committed. With none, the first to be read is the new slot.
    return ring.pending != 0 ? 0 : ring.length;
}

}  // namespace

std::size_t totalBytes(std::int32_t slotBytes, std::int32_t slots, std::int32_t minSlotBytes) {
    if (slots < 1 || slotBytes < minSlotBytes)
        throw std::length_error("ring slots too few or too small");
    if (slotBytes > std::numeric_limits<std::int32_t>::max() / slots)
        throw std::length_error("ring size does not fit 32 bits");
    return static_cast<std::size_t>(slotBytes) * static_cast<std::size_t>(slots);
}

std::size_t slotOf(std::int32_t position, std::int32_t length) {
    return static_cast<std::uint32_t>(position) % static_cast<std::uint32_t>(length);
}

bool isFull(const Positions& ring, std::int32_t reservedSlots) {
    return ring.pending + reservedSlots == ring.length;
}

Growth growByOne(const Positions& ring) {
    const auto w = static_cast<std::int32_t>(slotOf(ring.writeCount, ring.length));
    const auto r = static_cast<std::int32_t>(slotOf(ring.readIndex, ring.length));
    return {.rotation = static_cast<std::size_t>(w),
            .cornerCase = w == r,
            .grown = {.length = ring.length + 1,
                      .writeCount = ring.length,
                      .readIndex = rebasedReadIndex(r, w, ring),
                      .pending = ring.pending}};
}

}  // namespace orbitwalk::ring
