#include <gtest/gtest.h>

#include <map>

#include "fuzz/RecordMutator.h"
#include "orbitwalk/RecordReader.h"
#include "support/SampleRecord.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace orbitwalk {
namespace {

void runFuzzTarget(std::span<const std::byte> bytes) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

// The target aborts where a property does not hold.
TEST(RecordCorpus, HoldsThePropertiesOnEveryDamagedRecord) {
    constexpr int records = 800;
    const auto valid = recordBytes(sampleRecord());
    int accepted = 0;
    std::map<RecordFault, int> refused;
    for (int seed = 0; seed < records; ++seed) {
        auto bytes = valid;
        damageRecord(bytes, static_cast<std::uint32_t>(seed));
        runFuzzTarget(bytes);
        const auto opened = RecordReader::open(bytes);
        if (const auto* refusal = std::get_if<RecordRefusal>(&opened))
            ++refused[refusal->fault];
        else
            ++accepted;
    }
    EXPECT_GT(accepted, records / 20) << "the corpus hardly reaches the accessors";
    EXPECT_EQ(refused.size(), 10) << "every fault but the size's";
}

TEST(RecordCorpus, HoldsThePropertiesAtEveryLength) {
    auto bytes = recordBytes(sampleRecord());
    bytes.resize(bytes.size() + 64);
    for (std::size_t size = 0; size <= bytes.size(); ++size)
        runFuzzTarget(std::span(bytes).first(size));
}

}  // namespace
}  // namespace orbitwalk
