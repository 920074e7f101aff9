#include "fuzz/RecordMutator.h"

#include <cstring>
#include <limits>
#include <random>

#include "orbitwalk/MetaData.h"

namespace {

using Generator = std::minstd_rand;

std::uint32_t below(Generator& random, std::size_t count) {
    return static_cast<std::uint32_t>(random() % count);
}

std::size_t someWord(Generator& random) {
    constexpr std::size_t words = OBW_METADATA_SIZE / 4;
    switch (below(random, 8)) {
        case 0:
            return below(random, words);
        case 1:
            return offsetof(__kelOBWKDXMetaData, renderFlag) / 4 + below(random, 20);
        case 2:
            return offsetof(__kelOBWKDXMetaData, viewAngleMaxFrames) / 4 + below(random, 184);
        case 3:
            return offsetof(__kelOBWKDXMetaData, renderMat) / 4 + below(random, 9 * 12);
        default:
            return below(random, offsetof(__kelOBWKDXMetaData, renderMat) / 4);
    }
}

std::int32_t someValue(Generator& random, std::int32_t old) {
    constexpr auto least = std::numeric_limits<std::int32_t>::min();
    constexpr auto most = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t limits[] = {least, most, -1'000'000, -1,    0,       1,        2,
                                       3,     4,    6,          9,     10,      11,       12,
                                       100,   1000, 1001,       32767, 999'999, 1'000'000};
    switch (below(random, 4)) {
        case 0:
            return static_cast<std::int32_t>(random());
        case 1:
            return static_cast<std::int32_t>(static_cast<std::uint32_t>(old) + below(random, 3) -
                                             1);
        default:
            return limits[below(random, std::size(limits))];
    }
}

}  // namespace

void damageRecord(std::span<std::byte> record, std::uint32_t seed) {
    Generator random(seed);
    for (auto left = 1 + below(random, 4); left > 0; --left) {
        std::byte* const at = record.data() + 4 * someWord(random);
        std::int32_t word;
        std::memcpy(&word, at, sizeof word);
        word = someValue(random, word);
        std::memcpy(at, &word, sizeof word);
    }
}
