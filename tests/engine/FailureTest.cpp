#include "engine/FailureFixture.h"

#include <array>
#include <chrono>
#include <future>

namespace {

/// A capture in which the n-th allocation fails, through the entry points. @return whether it had
/// so many.
bool captureWithFailure(FailureTest& test, long n) {
    auto frames = std::to_array(FailureTest::kFrames);
    failure::failAllocation(n);
    int succeeded = initOrbitwalkEngine(&test.listener) == 1;
    succeeded += startOrbitwalkEngine(&test.param) == 1;
    for (int i = 0; i < 3; ++i) {
        float x, y, a;
        getTrajectory(test.frame.data(), &x, &y, &a);
        succeeded += provideFrameandTrajectory(test.frame.data(), x, y, a) == 1;
    }
    succeeded += stopOrbitwalkEngine(0, 2, frames.data(), 3, OBW_DIRECTION_LEFT2RIGHT) == 1;
    // Waits for post-processing.
    succeeded += provideFrameandTrajectory(test.frame.data(), 0, 0, 0) == -1;
    const bool reached = failure::allocationFailed();
    EXPECT_EQ(deinitOrbitwalkEngine(), 1);
    EXPECT_FALSE(test.tempDirExists()) << n;
    if (!reached) {
        EXPECT_EQ(succeeded, 7);
    }
    return reached;
}

TEST_F(FailureTest, NoAllocationThatFailsEscapesOrLeaksOrBlocks) {
    ASSERT_EQ(init(), 0);
    ASSERT_EQ(start(), 0);
    // What the libraries allocate once is not the engine's.
    ASSERT_EQ(trajectory(), 0);
    ASSERT_EQ(trajectory(), 0);
    ASSERT_EQ(deinitOrbitwalkEngine(), 1);
    long n = 0;
    do
        ASSERT_LT(++n, 100000);
    while (captureWithFailure(*this, n));
    EXPECT_GT(n, 20) << "allocations of a capture";
}

TEST_F(FailureTest, AFailedStartLeavesTheEngineIdleAndTheNextOneSucceeds) {
    for (long n = 1;; ++n) {
        ASSERT_EQ(init(), 0);
        failure::failAllocation(n);
        const int result = start();
        if (!failure::allocationFailed()) {
            EXPECT_EQ(result, 0);
            break;
        }
        EXPECT_EQ(failure::stateOf(engine()), 9) << n;
        if (result != OBW_RESULT_OK) {
            EXPECT_EQ(result, OBW_RESULT_FAIL) << n;
            EXPECT_EQ(failure::causes(), 1) << n;
        }
        ASSERT_EQ(start(), 0) << n;
        ASSERT_EQ(setFrame(), 0) << n;
        ASSERT_EQ(stop(), 0) << n;
        listener.await(100);
        listener.mLast = 0;
    }
}

using FailureDeathTest = FailureTest;

TEST_F(FailureDeathTest, WithoutAThreadForPostProcessingTheEngineStaysBlocked) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const bool begun = init() == 0 && start() == 0 && setFrame() == 0;
            failure::setThreadCreationFails(true);
            const bool refused = stop() == OBW_RESULT_FAIL && failure::stateOf(engine()) == 5;
            failure::setThreadCreationFails(false);
            auto blocked = std::async(std::launch::async, [this] { return setFrame(); });
            const bool waits =
                blocked.wait_for(std::chrono::milliseconds(200)) == std::future_status::timeout;
            std::_Exit(begun && refused && waits ? 42 : 1);
        },
        testing::ExitedWithCode(42), "");
}

}  // namespace
