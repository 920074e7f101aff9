#include "render/OrderedPipeline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <latch>
#include <numeric>
#include <stdexcept>
#include <string>

namespace orbitwalk::tool {
namespace {

using Pipeline = OrderedPipeline<int, int>;

auto countTo(int end) {
    return [end, next = 0]() mutable { return next < end ? std::optional(next++) : std::nullopt; };
}

TEST(OrderedPipeline, KeepsTheOrderWhenALaterItemIsReadyFirst) {
    std::latch secondDone(1);
    std::vector<int> results;
    Pipeline pipeline({countTo(20),
                       [&](int item) {
                           if (item == 0)
                               secondDone.wait();
                           if (item == 1)
                               secondDone.count_down();
                           return item * 10;
                       },
                       [&](int result) { results.push_back(result); }},
                      2, 4);
    pipeline.run();
    std::vector<int> expected(20);
    std::ranges::generate(expected, [n = 0]() mutable { return 10 * n++; });
    EXPECT_EQ(results, expected);
}

TEST(OrderedPipeline, HoldsNoMoreItemsThanItMay) {
    std::atomic<int> inside = 0, most = 0;
    Pipeline pipeline({[&, source = countTo(200)]() mutable {
                           const auto item = source();
                           if (item)
                               most = std::max(most.load(), ++inside);
                           return item;
                       },
                       [](int item) { return item; }, [&](int) { --inside; }},
                      3, 5);
    pipeline.run();
    EXPECT_EQ(inside, 0);
    // The sink's last item is counted as taken only after it returned.
    EXPECT_LE(most, 5);
    EXPECT_GE(most, 1);
}

TEST(OrderedPipeline, PassesOnWhatAStageThrowsAndEnds) {
    for (const std::string broken : {"source", "transform", "sink"}) {
        const auto fail = [&](const std::string& stage, int item) {
            if (stage == broken && item == 7)
                throw std::runtime_error(stage);
            return item;
        };
        int sunk = 0;
        Pipeline pipeline({[&, source = countTo(1000)]() mutable -> std::optional<int> {
                               return fail("source", *source());
                           },
                           [&](int item) { return fail("transform", item); },
                           [&](int result) { sunk += fail("sink", result) >= 0; }},
                          2, 3);
        try {
            pipeline.run();
            ADD_FAILURE() << broken;
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), broken);
        }
        EXPECT_LE(sunk, 7);
    }
}

}  // namespace
}  // namespace orbitwalk::tool
