#include <atomic>
#include <future>
#include <stdexcept>

#include "engine/EngineFixture.h"
#include "engine/ListenerSlot.h"

namespace {

using testing::IsEmpty;

TEST_F(EngineTest, ProgressAt100ComesWithoutTheLock) {
    listener.hook = [this](int percent) {
        if (percent == 100) {
            EXPECT_EQ(state(), 7);
            EXPECT_EQ(start(), OBW_RESULT_OK);
        }
    };
    beginCapture(2);
    EXPECT_EQ(listener.awaitAll(), kAllProgress);
    EXPECT_EQ(feed(1), OBW_RESULT_OK);
}

TEST_F(EngineTest, AFailedMP4EndsWithoutProgressAndAllowsTheNextStart) {
    for (const bool atInit : {true, false}) {
        fake_writer::reset();
        fake_writer::setInitResult(atInit ? 0 : 1);
        fake_writer::setEncodeResult(0);
        beginCapture(3);
        awaitPostProcessing();
        EXPECT_EQ(state(), 7);
    }
    fake_writer::reset();
    ASSERT_EQ(start(), OBW_RESULT_OK);
    ASSERT_EQ(stop(0, 0, framesWithFlags({1})), OBW_RESULT_OK);
    awaitPostProcessing();
    EXPECT_THAT(listener.percents(), IsEmpty()) << "a recording without frames fails as well";
    EXPECT_EQ(fake_platform::countLog("kelOBWEngine::onOBWEngineDoPostProcess : "
                                      "ResizeFrameProcessor->stop FAILED "),
              3);
    beginCapture(3);
    EXPECT_EQ(listener.awaitAll(), kAllProgress);
}

TEST_F(EngineTest, AStopOnTheRemainsOfAFailedPostProcessingFinishesWithThem) {
    fake_writer::setEncodeResult(0);
    beginCapture(3);
    awaitPostProcessing();
    ASSERT_EQ(init(), OBW_RESULT_OK);
    ASSERT_EQ(stop(0, 999, framesWithFlags(std::vector<int>(1000, 1))), OBW_RESULT_OK);
    EXPECT_EQ(listener.awaitAll(), kAllProgress);
    EXPECT_EQ(
        fake_platform::countLog("kelOBWEngine::onOBWEngineDoPostProcess frameProcessor is NULL"),
        1);
}

TEST_F(EngineTest, AListenerThatThrowsDoesNotStopTheWork) {
    listener.hook = [count = 0](int) mutable {
        if (++count < 7)
            throw std::runtime_error("listener");
    };
    beginCapture(2);
    EXPECT_EQ(listener.awaitAll(), std::vector{100});
    EXPECT_EQ(record.numFrames, 2);
    EXPECT_EQ(fake_platform::countLog("kelOBWEngine::onOBWEngineDoPostProcess : cause: listener"),
              6);
}

TEST_F(EngineTest, OtherCallsWaitUntilPostProcessingHasEnded) {
    const struct {
        const char* before;  ///< Said before the lock is taken.
        std::function<int()> call;
    } cases[] = {
        {"kelOBWEngine::stop STOP_NON_BLOCKING : stateLock-lock : engineState=5, ",
         [&] { return stop(0, 0, framesWithFlags({1})); }},
        {"kelOBWEngine::cancel : stateLock-lock : engineState=5",
         [&] { return engine().cancel(); }},
        {"kelOBWEngine::setFrameInfo : stateLock-lock : totalNumFrames=2, engineState=5, ",
         [&] { return setFrame(); }},
    };
    for (const auto& [before, call] : cases) {
        at(before, [&] {
            EXPECT_THAT(listener.percents(), IsEmpty());
            fake_writer::openGate();
        });
        fake_writer::closeGate();
        listener.forget();
        beginCapture(2);
        EXPECT_EQ(call(), OBW_RESULT_INVALID_STATE) << before;
        EXPECT_THAT(listener.percents(), testing::Contains(90)) << "did not wait: " << before;
        EXPECT_EQ(listener.awaitAll(), kAllProgress) << before;
        EXPECT_FALSE(tempDirExists());
    }
}

TEST_F(EngineTest, DeinitWaitsForTheListenersLastCall) {
    std::atomic<bool> returned = false;
    listener.hook = [&](int percent) {
        if (percent == 100) {
            EXPECT_TRUE(fake_platform::waitForLog("kelOBWEngine::ResetInstance -- enter"));
            returned = true;
        }
    };
    beginCapture(2);
    EXPECT_EQ(deinitOrbitwalkEngine(), 1);
    EXPECT_TRUE(returned);
}

// The window between giving the lock back and the call at 100 is held open by the line said in it.
TEST_F(EngineTest, AReplacedListenerIsNeverCalledAgain) {
    auto former = std::make_unique<RecordingListener>();
    at("kelOBWEngine::onOBWEngineDoPostProcess : stateLock-unlock DONE", [&] {
        EXPECT_EQ(init(), OBW_RESULT_OK);
        EXPECT_EQ(former->percents(), (std::vector{15, 30, 45, 60, 75, 90}));
        former.reset();
    });
    ASSERT_EQ(engine().init(0, 0, former.get()), OBW_RESULT_OK);
    ASSERT_EQ(start(), OBW_RESULT_OK);
    feedAndStop(2);
    EXPECT_EQ(listener.awaitAll(), std::vector{100});
}

// The call at 100 of one capture may still be under way when the next one's begins and ends.
TEST(ListenerSlot, WaitsForEachOfTheCallsThatOverlap) {
    orbitwalk::ListenerSlot slot;
    RecordingListener former, next;
    std::future<void> replaced;
    former.hook = [&](int percent) {
        if (percent == 2)
            return;
        slot.call(0, 2);  // Ends first.
        replaced = std::async(std::launch::async, [&] { slot.replace(&next); });
        EXPECT_EQ(replaced.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    };
    slot.replace(&former);
    slot.call(0, 1);
    replaced.get();
    EXPECT_EQ(former.percents(), (std::vector{2, 1}));
}

TEST_F(EngineTest, AListenerMayWaitForItsReplacementOnAnotherThread) {
    RecordingListener next;
    listener.hook = [&](int percent) {
        if (percent == 100) {
            auto other = std::async(std::launch::async, [&] { return engine().init(0, 0, &next); });
            EXPECT_EQ(other.get(), OBW_RESULT_OK);
        }
    };
    beginCapture(2);
    EXPECT_EQ(listener.awaitAll(), kAllProgress);
    EXPECT_THAT(next.percents(), IsEmpty());
    EXPECT_EQ(init(), OBW_RESULT_OK);
}

TEST_F(EngineTest, TheListenerMayEndTheEngineFromItsLastCall) {
    for (int round = 0; round < 20; ++round) {
        listener.forget();
        listener.hook = [](int percent) {
            if (percent == 100) {
                EXPECT_EQ(deinitOrbitwalkEngine(), 1);
            }
        };
        beginCapture(1);
        EXPECT_EQ(listener.awaitAll(), kAllProgress);
    }
}

}  // namespace
