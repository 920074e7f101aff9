#include <gtest/gtest.h>
#include <sys/resource.h>

#include <fstream>
#include <random>

#include "engine/CaptureFixture.h"
#include "support/FakeMP4Writer.h"

namespace {

class Silent : public OBWEngineListener {
  public:
    void onProgress(int, int) override {}
};

class Memory : public CaptureFixture<Silent> {
  public:
    /// Pages of the process that are in memory now, and the most that ever were, in kB.
    static long now() {
        std::ifstream file("/proc/self/status");
        for (std::string word; file >> word;)
            if (word == "VmRSS:") {
                long kilobytes = 0;
                file >> kilobytes;
                return kilobytes;
            }
        return 0;
    }
    static long most() {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    }
};

TEST_F(Memory, OfACaptureIsFifteenFramesAnd16MBWhileTheEncoderKeepsUp) {
    fake_writer::reset();
    constexpr int width = 1920, height = 1080, frameBytes = width * height * 3 / 2;
    // Noise has as many corners as are looked for.
    std::mt19937 random(1);
    std::vector<unsigned char> noise(frameBytes + 64 * 1024);
    for (unsigned char& byte : noise)
        byte = static_cast<unsigned char>(random());
    ASSERT_EQ(init(), 0);
    // What OpenCV takes once is not a capture's.
    ASSERT_EQ(start(), 0);
    ASSERT_EQ(trajectory(), 0);
    ASSERT_EQ(trajectory(), 0);
    ASSERT_EQ(engine().cancel(), 0);

    param.imageWidth = width;
    param.imageHeight = height;
    const long before = now();
    ASSERT_EQ(start(), 0);
    for (int i = 0; i < 40; ++i) {
        float x, y, a;
        unsigned char* const shifted = noise.data() + 1000 * i;
        ASSERT_EQ(engine().computeTrajectory(shifted, &x, &y, &a), 0);
        ASSERT_EQ(engine().setFrameInfo(shifted, x, y, a), 0);
        ASSERT_TRUE(fake_writer::waitForEntered(i + 1));
    }
    const long taken = most() - before, slots = 15L * frameBytes / 1024;
    RecordProperty("kilobytes_beyond_slots", std::to_string(taken - slots));
    EXPECT_GT(taken, slots);
    EXPECT_LT(taken, slots + 16 * 1024);
}

}  // namespace
