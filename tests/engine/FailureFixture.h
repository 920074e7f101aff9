#pragma once

#include <atomic>

#include "engine/CaptureFixture.h"
#include "engine/FailureInjection.h"

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

/// An engine whose allocations and threads may fail, and a picture that can be measured.
class FailureTest : public CaptureFixture<CountingListener> {
  public:
    static constexpr _ENCODING_FRAME_INFORMATION kFrames[] = {
        {0, 0, 0, 1, 0, 0}, {1, 0, 0, 1, 0, 0}, {2, 0, 0, 1, 0, 0}};

    FailureTest() {
        unsigned seed = 1;
        for (unsigned char& byte : frame)
            byte = static_cast<unsigned char>((seed = seed * 1664525u + 1013904223u) >> 24);
    }
    void TearDown() override {
        failure::setGateOpen(true);
        CaptureFixture::TearDown();
    }
    int stop() { return CaptureFixture::stop(0, 2, kFrames); }
};
