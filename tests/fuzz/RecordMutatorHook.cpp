// Blind changes would spend the fuzzer's time on the size and on words that nobody reads: it starts
// from a valid record and mostly damages words that matter, sometimes its own way.
#include <algorithm>
#include <cstring>

#include "fuzz/RecordMutator.h"
#include "support/SampleRecord.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    if (seed % 8 == 0 || maxSize < OBW_METADATA_SIZE)
        return LLVMFuzzerMutate(data, size, maxSize);
    const std::span record(reinterpret_cast<std::byte*>(data), OBW_METADATA_SIZE);
    if (size != OBW_METADATA_SIZE)
        std::ranges::copy(recordBytes(sampleRecord()), record.begin());
    damageRecord(record, seed);
    return record.size();
}
