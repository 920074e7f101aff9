#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// Damages one to four words of a record: most often a field of the header, a count or a matrix
/// that counts, most often with a value at or near a limit. The same seed damages the same way.
/// @param record  OBW_METADATA_SIZE bytes.
void damageRecord(std::span<std::byte> record, std::uint32_t seed);
