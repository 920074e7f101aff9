#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <functional>
#include <mutex>

#include "engine/CaptureFixture.h"
#include "support/FakeMP4Writer.h"
#include "support/FakePlatform.h"

/// Remembers what the engine reported and runs the test's hook within each call.
class RecordingListener : public OBWEngineListener {
  public:
    void onProgress(int status, int percent) override {
        EXPECT_EQ(status, 0);
        hook(percent);
        const std::lock_guard guard(mLock);
        mPercents.push_back(percent);
        mChanged.notify_all();
    }
    /// @return the percents so far, after 100 was reported; what came within ten seconds otherwise.
    std::vector<int> awaitAll() {
        std::unique_lock guard(mLock);
        mChanged.wait_for(guard, std::chrono::seconds(10),
                          [this] { return !mPercents.empty() && mPercents.back() == 100; });
        return mPercents;
    }
    std::vector<int> percents() {
        const std::lock_guard guard(mLock);
        return mPercents;
    }
    void forget() {
        const std::lock_guard guard(mLock);
        mPercents.clear();
    }

    std::function<void(int)> hook = [](int) {};

  private:
    std::mutex mLock;
    std::condition_variable mChanged;
    std::vector<int> mPercents;
};

inline const std::vector<int> kAllProgress = {15, 30, 45, 60, 75, 90, 100};

using Frames = std::vector<_ENCODING_FRAME_INFORMATION>;

/// Frames of a still camera with these render flags.
inline Frames framesWithFlags(const std::vector<int>& flags) {
    Frames frames;
    for (const int flag : flags)
        frames.push_back({0, 0, 0, flag, 0, 0});
    return frames;
}

/// Expects lines that begin with these texts, in this order.
inline void expectInOrder(const std::vector<std::string>& expected) {
    const auto lines = fake_platform::logTexts();
    auto line = lines.begin();
    for (const std::string& text : expected) {
        line = std::find_if(line, lines.end(),
                            [&](const std::string& said) { return said.starts_with(text); });
        ASSERT_NE(line, lines.end()) << "missing or out of order: " << text;
        ++line;
    }
}

/// An engine whose log, build type and MP4 writer are the test's.
class EngineTest : public CaptureFixture<RecordingListener> {
  protected:
    EngineTest() {
        fake_platform::setBuildType("user");
        fake_platform::clearLog();
        fake_writer::reset();
        std::memset(&record, 0xee, sizeof record);
    }
    void TearDown() override {
        fake_writer::openGate();
        CaptureFixture::TearDown();
        fake_platform::whenLogged({});
        EXPECT_EQ(fake_writer::record().misuses, 0);
    }

    /// State as the log of a refused start, which changes nothing, gives it.
    int state() {
        EXPECT_EQ(engine().start(nullptr), OBW_RESULT_INVALID_PARAM);
        const std::string prefix = "kelOBWEngine::start-- max frames = 1000, engineState=";
        std::string last;
        for (const std::string& text : fake_platform::logTexts("ORBITWALK_ENGINE"))
            if (text.starts_with(prefix))
                last = text.substr(prefix.size());
        return std::stoi(last);
    }
    int feed(std::size_t count) {
        int result = OBW_RESULT_OK;
        for (; count > 0 && result == OBW_RESULT_OK; --count)
            result = setFrame();
        return result;
    }
    void initAndStart() {
        ASSERT_EQ(init(), OBW_RESULT_OK);
        ASSERT_EQ(start(), OBW_RESULT_OK);
    }
    /// Feeds frames and stops over all of them.
    void feedAndStop(int frames) {
        ASSERT_EQ(feed(frames), OBW_RESULT_OK);
        ASSERT_EQ(stop(0, frames - 1, framesWithFlags(std::vector<int>(frames, 1))), OBW_RESULT_OK);
    }
    /// init, start, frames, and a stop over all of them.
    void beginCapture(int frames) {
        initAndStart();
        feedAndStop(frames);
    }
    /// A whole capture over these frames, up to progress 100.
    void capture(const Frames& frames, int first, int last,
                 OBWDirection direction = OBW_DIRECTION_LEFT2RIGHT) {
        listener.forget();
        initAndStart();
        ASSERT_EQ(feed(frames.size()), OBW_RESULT_OK);
        ASSERT_EQ(stop(first, last, frames, direction), OBW_RESULT_OK);
        ASSERT_EQ(listener.awaitAll(), kAllProgress);
    }
    /// Waits until post-processing has ended, whichever way: a frame call takes the lock.
    void awaitPostProcessing() { setFrame(); }
    /// Runs an action when a line that begins with a text is logged, on the thread that logs it.
    /// For one line a test, before the first thread.
    void at(const std::string& line, const std::function<void()>& action) {
        fake_platform::whenLogged([=](const fake_platform::LogLine& logged) {
            if (logged.text.starts_with(line))
                action();
        });
    }
};
