#include <gtest/gtest.h>

#include <limits>

#include "common/BuildType.h"
#include "common/FixedPoint.h"
#include "common/Stopwatch.h"
#include "common/TaskThread.h"
#include "support/FakePlatform.h"

using namespace orbitwalk;

namespace {

TEST(FixedPoint, TruncatesTowardZeroAndHasNoUndefinedCorner) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const struct {
        double value;
        std::int32_t stored;
    } cases[] = {
        {1.0, 1000000},
        {-0.5, -500000},
        {-0.9999995, -999999},
        {0.0000019, 1},
        {-0.0, 0},
        {2147.483647, 2147483647},
        {2147.5, 2147483647},
        {-2147.5, -2147483647 - 1},
        {infinity, 2147483647},
        {-infinity, -2147483647 - 1},
        {std::numeric_limits<double>::quiet_NaN(), 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(toFixedPoint(c.value), c.stored) << c.value;
}

TEST(TaskThread, DoesWhatItHasBegunAndLeavesTheRestToItsOwner) {
    int done = 0, offered = 0;
    {
        TaskThread thread([&] { ++done; });
        thread.settle();
        EXPECT_EQ(done, 0) << "nothing was offered";
        for (int last = 0; done < 3; last = done) {
            thread.begin();
            ++offered;
            if (offered % 2 == 0)
                std::this_thread::yield();
            thread.settle();
            ASSERT_TRUE(done == last || done == last + 1);
        }
        thread.begin();
    }
    EXPECT_LE(done, 4);
    EXPECT_GE(offered, 3);
}

TEST(Stopwatch, BorrowsASecondWhenTheMicrosecondDifferenceIsNegative) {
    EXPECT_FLOAT_EQ(elapsedMilliseconds({10, 999000}, {11, 1000}), 2.0f);
    EXPECT_FLOAT_EQ(elapsedMilliseconds({10, 0}, {12, 500}), 2000.5f);
}

TEST(Stopwatch, LogsTheStretchAtVerbosePriorityUnderItsOwnTag) {
    fake_platform::clearLog();
    { const ScopedTiming timing("a stretch"); }
    const auto lines = fake_platform::logLines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].priority, 2);
    EXPECT_EQ(lines[0].tag, "a stretch");
    EXPECT_TRUE(lines[0].text.starts_with("Time Elapsed : "));
    EXPECT_TRUE(lines[0].text.ends_with(" ms\n"));
}

TEST(BuildType, OnlyEngIsAnEngineeringBuild) {
    for (const auto& [value, expected] :
         {std::pair{"eng", true}, {"user", false}, {"engine", false}, {"", false}}) {
        fake_platform::setBuildType(value);
        EXPECT_EQ(BuildType().isEngineering(), expected) << value;
    }
    fake_platform::setBuildType("user");
}

}  // namespace
