#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "engine/kelOBWEngine.h"
#include "support/TestDirectory.h"

/// An engine with its temporary directory below a fresh one, a stream, a record and a listener.
/// Ends with deinit, which must leave no temporary directory. The operations give the engine's own
/// results; an entry point shows only 1 and -1.
template <class Listener>
class CaptureFixture : public testing::Test {
  public:
    static constexpr int kWidth = 64;
    static constexpr int kHeight = 48;

    CaptureFixture() { moveTempDirTo("work"); }
    void TearDown() override {
        EXPECT_EQ(deinitOrbitwalkEngine(), 1);
        EXPECT_FALSE(tempDirExists());
        std::fclose(stream);
    }

    kelOBWEngine& engine() { return *kelOBWEngine::GetInstance(); }
    int init() { return engine().init(0, 0, &listener); }
    int start() { return engine().start(&param); }
    int setFrame() { return engine().setFrameInfo(frame.data(), 0, 0, 0); }
    int trajectory() {
        float x, y, a;
        return engine().computeTrajectory(frame.data(), &x, &y, &a);
    }
    int stop(int first, int last, std::span<const _ENCODING_FRAME_INFORMATION> frames,
             OBWDirection direction = OBW_DIRECTION_LEFT2RIGHT) {
        return engine().stop(first, last, frames.data(), static_cast<int>(frames.size()),
                             direction);
    }
    /// Changes localTmpDir, as a host may.
    void moveTempDirTo(const std::string& name) {
        std::snprintf(localTmpDir, sizeof localTmpDir, "%s/", (directory / name).c_str());
    }
    bool tempDirExists() const { return std::filesystem::exists(localTmpDir); }

    const test_support::TestDirectory directory;
    std::FILE* const stream = std::tmpfile();
    Listener listener;
    __kelOBWKDXMetaData record{};
    _OBW_ENGINE_INIT_PARAM param = {kWidth, kHeight, 17, stream, &record, false, 0};
    std::vector<unsigned char> frame = std::vector<unsigned char>(kWidth * kHeight * 3 / 2, 128);
};
