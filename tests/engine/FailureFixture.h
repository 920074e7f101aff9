#pragma once

#include <atomic>

#include "engine/CaptureFixture.h"

/// Makes allocations and thread creations fail, anywhere in the program. The platform and the MP4
/// writer that come with it allocate nothing.
namespace failure {

/// The n-th allocation from now on, on any thread, throws std::bad_alloc; those after it succeed.
void failAllocation(long n);
/// Ends this. @return whether that allocation was reached.
bool allocationFailed();
/// How many allocations the program's own code has made, on any thread; those of OpenCV's libraries
/// are not among them.
long allocations();
/// How often the log has said since then what an exception was.
int causes();
/// Whether pthread_create fails in the program's own code.
void setThreadCreationFails(bool fails);

/// EncodeFrame waits while the gate is closed.
void setGateOpen(bool open);
/// State in the log of a refused start, which changes nothing.
int stateOf(kelOBWEngine& engine);

}  // namespace failure

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
