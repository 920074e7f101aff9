#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "engine/FailureInjection.h"
#include "engine/EngineState.h"

/// Allocates nothing while the engine works.
class CountingListener : public OBWEngineListener {
  public:
    void onProgress(int, int percent) override {
        mLast = percent;
        mLast.notify_all();
    }
    void await(int percent) {
        for (int last = mLast; last != percent; last = mLast)
            mLast.wait(last);
    }
    std::atomic<int> mLast = 0;
};

/// An engine below a fresh directory, ended by deinit.
class FailureTest : public testing::Test {
  public:
    static constexpr int kWidth = 64;
    static constexpr int kHeight = 48;

    FailureTest() : root(testing::TempDir() + "orbitwalk.XXXXXX"), stream(std::tmpfile()) {
        EXPECT_NE(mkdtemp(root.data()), nullptr);
        std::snprintf(localTmpDir, sizeof localTmpDir, "%s/work/", root.c_str());
        param = {kWidth, kHeight, 0, stream, &record, false, 0};
        unsigned seed = 1;
        for (unsigned char& byte : picture)
            byte = static_cast<unsigned char>((seed = seed * 1664525u + 1013904223u) >> 24);
    }
    ~FailureTest() override {
        failure::setGateOpen(true);
        EXPECT_EQ(deinitOrbitwalkEngine(), 1);
        EXPECT_FALSE(std::filesystem::exists(localTmpDir));
        std::fclose(stream);
        std::filesystem::remove_all(root);
    }

    kelOBWEngine& engine() { return *kelOBWEngine::GetInstance(); }
    int init() { return engine().init(0, 0, &listener); }
    int start() { return engine().start(&param); }
    int frame() { return engine().setFrameInfo(picture.data(), 0, 0, 0); }
    int trajectory() {
        float x, y, a;
        return engine().computeTrajectory(picture.data(), &x, &y, &a);
    }
    int stop() {
        const _ENCODING_FRAME_INFORMATION frames[] = {
            {0, 0, 0, 1, 0, 0}, {1, 0, 0, 1, 0, 0}, {2, 0, 0, 1, 0, 0}};
        return engine().stop(0, 2, frames, 3, OBW_DIRECTION_LEFT2RIGHT);
    }

    std::string root;
    std::FILE* stream;
    CountingListener listener;
    __kelOBWKDXMetaData record{};
    _OBW_ENGINE_INIT_PARAM param;
    std::vector<unsigned char> picture = std::vector<unsigned char>(kWidth * kHeight * 3 / 2);
};
