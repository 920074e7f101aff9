#include <limits>
#include <thread>

#include "engine/EngineFixture.h"

namespace {

TEST_F(EngineTest, BadArgumentsAreRefusedAndAProperCallCanFollow) {
    EXPECT_EQ(initOrbitwalkEngine(nullptr), -1);
    ASSERT_EQ(initOrbitwalkEngine(&listener), 1);
    EXPECT_EQ(startOrbitwalkEngine(nullptr), -1);
    ASSERT_EQ(startOrbitwalkEngine(&param), 1);
    EXPECT_EQ(provideFrameandTrajectory(nullptr, 0, 0, 0), -1);
    expectInOrder(
        {"Listener is null", "provideFrameandTrajectory : ERROR........status=7, returning -1 "});
    ASSERT_EQ(provideFrameandTrajectory(frame.data(), 0, 0, 0), 1);
    auto frames = framesWithFlags({1});
    using Limits = std::numeric_limits<int>;
    for (const int count : {0, -1, 1001, Limits::max(), Limits::min()})
        EXPECT_EQ(engine().stop(0, 0, frames.data(), count, OBW_DIRECTION_LEFT2RIGHT),
                  OBW_RESULT_INVALID_PARAM);
    EXPECT_EQ(engine().stop(0, 0, nullptr, 1, OBW_DIRECTION_LEFT2RIGHT), OBW_RESULT_INVALID_PARAM);
    EXPECT_EQ(state(), 9);
    EXPECT_TRUE(tempDirExists());
    ASSERT_EQ(stopOrbitwalkEngine(0, 0, frames.data(), 1, OBW_DIRECTION_LEFT2RIGHT), 1);
    EXPECT_EQ(listener.awaitAll(), kAllProgress);
}

TEST_F(EngineTest, ATrajectoryCallWithoutACaptureGivesZeros) {
    float out[] = {1, 2, 3};
    getTrajectory(frame.data(), out, out + 1, out + 2);
    EXPECT_THAT(out, testing::Each(0.0f));
    initAndStart();
    for (int missing = 0; missing < 3; ++missing) {
        float* to[] = {out, out, out};
        to[missing] = nullptr;
        EXPECT_EQ(engine().computeTrajectory(frame.data(), to[0], to[1], to[2]), OBW_RESULT_FAIL);
    }
    EXPECT_EQ(engine().computeTrajectory(nullptr, out, out, out), OBW_RESULT_OK);
}

TEST_F(EngineTest, CallsFromManyThreadsEndInOrder) {
    ASSERT_EQ(init(), OBW_RESULT_OK);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([this, t] {
            for (int i = 0; i < 10; ++i) {
                if (t == 0)
                    start();
                trajectory();
                setFrame();
                if (t == 1)
                    stop(0, 1, framesWithFlags({1, 1}));
                if (t == 2)
                    engine().cancel();
                if (t == 3)
                    init();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(deinitOrbitwalkEngine(), 1);
}

}  // namespace
