#pragma once

#include <gmock/gmock.h>

#include <condition_variable>
#include <functional>
#include <mutex>

#include "engine/CaptureFixture.h"
#include "support/FakeMP4Writer.h"
#include "support/FakePlatform.h"

/// Remembers what the engine reported and runs the test's hook within each call.
class RecordingListener : public OBWEngineListener {
  public:
    void onProgress(int status, int percent) override;
    /// @return the percents so far, after 100 was reported; what came within ten seconds otherwise.
    std::vector<int> awaitAll();
    std::vector<int> percents();
    void forget();

    std::function<void(int)> hook = [](int) {};

  private:
    std::mutex mLock;
    std::condition_variable mChanged;
    std::vector<int> mPercents;
};

/// An engine whose log, build type and MP4 writer are the test's.
class EngineTest : public CaptureFixture<RecordingListener> {
  protected:
    EngineTest();
    void TearDown() override;

    /// State as the log of a refused start, which changes nothing, gives it.
    int state();
    int feed(int count);
    void initAndStart();
    /// Feeds frames and stops over all of them.
    void feedAndStop(int frames);
    /// init, start, frames, and a stop over all of them.
    void beginCapture(int frames);
    /// Waits until post-processing has ended, whichever way: a frame call takes the lock.
    void awaitPostProcessing() { setFrame(); }
    /// Runs an action when a line that begins with a text is logged, on the thread that logs it.
    /// For one line a test, before the first thread.
    void at(const std::string& line, const std::function<void()>& action);
};

/// Frames of a still camera with these render flags.
std::vector<_ENCODING_FRAME_INFORMATION> framesWithFlags(const std::vector<int>& flags);

/// Expects lines that begin with these texts, in this order.
void expectInOrder(const std::vector<std::string>& expected);

inline const std::vector<int> kAllProgress = {15, 30, 45, 60, 75, 90, 100};
