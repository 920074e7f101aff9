#include "engine/FailureFixture.h"

#include <array>
#include <chrono>
#include <future>

#include "findTransform/Scene.h"

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

TEST_F(FailureTest, AFrameOfAWarmCaptureAllocatesNothingOfTheEngines) {
    param.imageWidth = 1280;
    param.imageHeight = 720;
    std::vector<std::vector<unsigned char>> frames;
    for (int i = 0; i < 12; ++i) {
        frames.push_back(Scene().frame(1280, 720, {8.0 * i, 1.5 * i, 0.001 * i}, 4));
        frames.back().resize(1280 * 720 * 3 / 2);
    }
    ASSERT_EQ(init(), 0);
    ASSERT_EQ(start(), 0);
    float x = 0, y = 0, a = 0;
    long before = 0;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        if (i == 3)
            before = failure::allocations();
        getTrajectory(frames[i].data(), &x, &y, &a);
        ASSERT_EQ(provideFrameandTrajectory(frames[i].data(), x, y, a), 1);
    }
    EXPECT_EQ(failure::allocations() - before, 0);
    EXPECT_NEAR(x, 88, 20) << "pixels: there were corners to track";
    EXPECT_GT(before, 10) << "those of the start";
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
