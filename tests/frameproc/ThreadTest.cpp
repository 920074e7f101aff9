#include "frameproc/CThread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <optional>
#include <string>
#include <vector>

#include "support/FakePlatform.h"

namespace {

/// Says that its first unit of work has begun, and does not end it before it is let go.
class HeldThread : public vfw::CThread {
  public:
    explicit HeldThread(std::vector<std::string>& steps) : mSteps(steps) {}
    ~HeldThread() override { join(); }

    void waitUntilHeld() { mBegun.get_future().wait(); }
    void letGo() { mGo.set_value(); }

    std::atomic<bool> ended{false};

  protected:
    void onStart() override { mSteps.push_back("start"); }
    void onStop() override {
        mSteps.push_back("stop");
        ended = true;
    }
    bool onRun() override {
        mSteps.push_back("run");
        if (mUnits++ == 0) {
            mBegun.set_value();
            mGo.get_future().wait();
        }
        return mUnits < 3;
    }

  private:
    std::promise<void> mBegun, mGo;
    std::vector<std::string>& mSteps;
    int mUnits = 0;
};

using testing::ElementsAre;

struct Thread : testing::Test {
    std::vector<std::string> steps;
    std::optional<HeldThread> thread{std::in_place, steps};
};

TEST_F(Thread, StartedTwiceRunsOnceAndIsWaitedForByJoinOrDestructor) {
    for (const bool joined : {true, false}) {
        thread.emplace(steps);
        thread->start();
        thread->start();
        thread->letGo();
        if (joined) {
            thread->join();
            thread->join();
            thread->start();
            EXPECT_FALSE(thread->joinable());
        }
        thread.reset();
        EXPECT_THAT(steps, ElementsAre("start", "run", "run", "run", "stop"));
        steps.clear();
    }
}

TEST_F(Thread, EndsAfterTheUnitInWhichItWasAskedToStopAndIsNotWaitedForAgain) {
    thread->start();
    thread->waitUntilHeld();
    thread->requestStop();
    thread->requestStopAndWait();
    EXPECT_FALSE(thread->ended);
    EXPECT_TRUE(thread->joinable());
    thread->letGo();
    thread->join();
    EXPECT_THAT(steps, ElementsAre("start", "run", "stop"));
}

TEST_F(Thread, IgnoresEveryRequestBeforeItIsStarted) {
    thread->requestStop();
    thread->requestStopAndWait();
    thread->join();
    thread->detach();
    EXPECT_FALSE(thread->joinable());
    thread->start();
    thread->waitUntilHeld();
    EXPECT_TRUE(thread->joinable());
    thread->letGo();
    thread->requestStopAndWait();
    EXPECT_TRUE(thread->ended);
    EXPECT_FALSE(thread->joinable());
}

TEST_F(Thread, OnceDetachedIsNotJoined) {
    thread->start();
    thread->waitUntilHeld();
    thread->detach();
    thread->detach();
    EXPECT_FALSE(thread->joinable());
    thread->join();
    EXPECT_FALSE(thread->ended);
    thread->letGo();
    EXPECT_TRUE(fake_platform::waitUntil([&] { return thread->ended.load(); }));
}

TEST(ThreadSleep, IsInWholeSecondsAndNanoseconds) {
    const auto time = vfw::timespecOfMilliseconds(1507);
    EXPECT_EQ(time.tv_sec, 1);
    EXPECT_EQ(time.tv_nsec, 507000000);
}

}  // namespace
