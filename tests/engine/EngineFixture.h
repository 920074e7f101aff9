#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "engine/EngineState.h"
#include "engine/kelOBWEngine.h"
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

/// An engine with its temporary directory below a fresh one, a stream, a record buffer and a
/// listener. Ends with deinit, which must leave no temporary directory.
class EngineTest : public testing::Test {
  protected:
    static constexpr int kWidth = 64;
    static constexpr int kHeight = 48;
    static constexpr int kFrameBytes = kWidth * kHeight * 3 / 2;

    EngineTest();
    ~EngineTest() override;

    /// Engine's own result codes; an entry point shows only 1 and -1.
    kelOBWEngine& engine() { return *kelOBWEngine::GetInstance(); }
    /// State as the log of a refused start, which changes nothing, gives it.
    int state();
    int init() { return engine().init(0, 0, &listener); }
    int start() { return engine().start(&param); }
    int feed(int count);
    int stop(int first, int last, std::vector<_ENCODING_FRAME_INFORMATION> frames,
             OBWDirection direction = OBW_DIRECTION_LEFT2RIGHT);
    void initAndStart();
    /// Feeds frames and stops over all of them.
    void feedAndStop(int frames);
    /// init, start, frames, and a stop over all of them.
    void beginCapture(int frames);
    /// Waits until post-processing has ended, whichever way: a frame call takes the lock.
    void awaitPostProcessing() { engine().setFrameInfo(frame.data(), 0, 0, 0); }
    bool tempDirExists() const { return std::filesystem::exists(tempDir); }

    std::string root;
    std::filesystem::path tempDir;
    std::FILE* stream;
    RecordingListener listener;
    __kelOBWKDXMetaData record;
    _OBW_ENGINE_INIT_PARAM param;
    std::vector<unsigned char> frame = std::vector<unsigned char>(kFrameBytes, 128);
};

/// Frames of a still camera with these render flags.
std::vector<_ENCODING_FRAME_INFORMATION> framesWithFlags(const std::vector<int>& flags);

inline const std::vector<int> kAllProgress = {15, 30, 45, 60, 75, 90, 100};
