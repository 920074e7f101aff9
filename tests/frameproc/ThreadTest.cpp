#include "frameproc/CThread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <string>
#include <vector>

namespace {

/// Says that its first unit of work has begun, and does not end it before it is let go.
class HeldThread : public vfw::CThread {
  public:
    HeldThread() = default;
    explicit HeldThread(std::vector<std::string>& outside) : mSteps(&outside) {}
    ~HeldThread() override { join(); }

    void waitUntilHeld() { mBegun.get_future().wait(); }
    void letGo() { mGo.set_value(); }
    bool hasEnded() const { return mEnded; }
    /// After the thread has been joined.
    const std::vector<std::string>& steps() const { return *mSteps; }

  protected:
    void onStart() override { mSteps->push_back("start"); }
    void onStop() override {
        mSteps->push_back("stop");
        mEnded = true;
    }
    bool onRun() override {
        mSteps->push_back("run");
        if (mUnits++ == 0) {
            mBegun.set_value();
            mGo.get_future().wait();
        }
        return mUnits < 3;
    }

  private:
    std::promise<void> mBegun, mGo;
    std::vector<std::string> mOwnSteps;
    std::vector<std::string>* mSteps = &mOwnSteps;
    std::atomic<bool> mEnded{false};
    int mUnits = 0;
};

using testing::ElementsAre;

TEST(Thread, StartedTwiceRunsOnceUntilItsWorkIsDone) {
    HeldThread thread;
    thread.start();
    thread.start();
    thread.letGo();
    thread.join();
    thread.join();
    thread.start();
    EXPECT_FALSE(thread.joinable());
    EXPECT_THAT(thread.steps(), ElementsAre("start", "run", "run", "run", "stop"));
}

TEST(Thread, EndsAfterTheUnitInWhichItWasAskedToStop) {
    HeldThread thread;
    thread.start();
    thread.waitUntilHeld();
    thread.requestStop();
    thread.letGo();
    thread.join();
    EXPECT_THAT(thread.steps(), ElementsAre("start", "run", "stop"));
}

TEST(Thread, DoesNotWaitForAStopThatWasAlreadyRequested) {
    HeldThread thread;
    thread.start();
    thread.waitUntilHeld();
    thread.requestStop();
    thread.requestStopAndWait();
    EXPECT_FALSE(thread.hasEnded());
    EXPECT_TRUE(thread.joinable());
    thread.letGo();
}

TEST(Thread, IgnoresEveryRequestBeforeItIsStarted) {
    HeldThread thread;
    thread.requestStop();
    thread.requestStopAndWait();
    thread.join();
    thread.detach();
    EXPECT_FALSE(thread.joinable());
    thread.start();
    thread.waitUntilHeld();
    EXPECT_TRUE(thread.joinable());
    thread.letGo();
    thread.requestStopAndWait();
    EXPECT_TRUE(thread.hasEnded());
    EXPECT_FALSE(thread.joinable());
}

TEST(Thread, IsWaitedForByItsDestructor) {
    std::vector<std::string> steps;
    {
        HeldThread thread(steps);
        thread.start();
        thread.letGo();
    }
    EXPECT_THAT(steps, ElementsAre("start", "run", "run", "run", "stop"));
}

TEST(Thread, OnceDetachedIsNotJoined) {
    HeldThread thread;
    thread.start();
    thread.waitUntilHeld();
    thread.detach();
    thread.detach();
    EXPECT_FALSE(thread.joinable());
    thread.join();
    EXPECT_FALSE(thread.hasEnded());
    thread.letGo();
    while (!thread.hasEnded())
        std::this_thread::yield();
}

TEST(Thread, SleepsWholeSecondsAndNanoseconds) {
    EXPECT_EQ(vfw::timespecOfMilliseconds(1500).tv_sec, 1);
    EXPECT_EQ(vfw::timespecOfMilliseconds(1500).tv_nsec, 500000000);
    EXPECT_EQ(vfw::timespecOfMilliseconds(7).tv_sec, 0);
    EXPECT_EQ(vfw::timespecOfMilliseconds(7).tv_nsec, 7000000);
}

}  // namespace
