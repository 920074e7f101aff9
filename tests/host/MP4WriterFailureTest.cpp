#include <MP4Writer.h>
#include <OrbitwalkPlatform.h>
#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "Clips.h"
#include "support/TestDirectory.h"
#include "support/VideoFile.h"

namespace {

using clips::MemoryStream;
using testing::ElementsAre;
using testing::HasSubstr;

/// The error lines that the writer logs during a test.
class MP4WriterFailure : public testing::Test {
  protected:
    MP4WriterFailure() { OrbitwalkSetLogListener(hear, this); }
    ~MP4WriterFailure() override { OrbitwalkSetLogListener(nullptr, nullptr); }

    std::vector<std::string> errors;

  private:
    static void hear(int priority, const char* tag, const char* text, void* self) {
        EXPECT_STREQ(tag, "ORBITWALK_MP4_WRITER");
        if (priority == ANDROID_LOG_ERROR)
            static_cast<MP4WriterFailure*>(self)->errors.push_back(text);
    }
};

int begin(std::FILE* file) {
    return InitMP4Engine(nullptr, nullptr, 96, 64, 0, 2'000'000, 15, 30, 7, -1, file);
}

int encode(int frame) {
    return EncodeFrame(clips::noise(96, 64, frame).data());
}

/// A recording works, whatever happened before.
void expectUsable() {
    MemoryStream stream;
    EXPECT_EQ(begin(stream.file()), 1);
    EXPECT_EQ(encode(0), 1);
    EXPECT_EQ(DeInitMP4Engine(), 1);
}

TEST_F(MP4WriterFailure, BadSettingsAreRefusedWithALineEach) {
    MemoryStream stream;
    const struct {
        int width, height, rotation, bitRate, keyInterval, frameRate, speed;
        const char* reason;
    } cases[] = {
        {0, 64, 0, 1000000, 15, 30, 7, "frame size 0x64"},
        {96, 63, 0, 1000000, 15, 30, 7, "frame size 96x63"},
        {96, 64, 90, 1000000, 15, 30, 7, "rotation 90"},
        {96, 64, 0, 0, 15, 30, 7, "bit rate 0"},
        {96, 64, 0, 1000000, 0, 30, 7, "key-frame interval 0"},
        {96, 64, 0, 1000000, 15, 0, 7, "frame rate 0/1"},
        {96, 64, 0, 1000000, 15, 30, 10, "speed 10"},
    };
    for (const auto& c : cases) {
        errors.clear();
        EXPECT_NE(InitMP4Engine(nullptr, nullptr, c.width, c.height, c.rotation, c.bitRate,
                                c.keyInterval, c.frameRate, c.speed, -1, stream.file()),
                  1);
        EXPECT_THAT(errors, ElementsAre(std::string("cannot record with ") + c.reason));
    }
    errors.clear();
    EXPECT_NE(begin(nullptr), 1);
    EXPECT_THAT(errors, ElementsAre(HasSubstr("no stream")));
    expectUsable();
}

TEST_F(MP4WriterFailure, FramesWithoutARecordingFailWithOneLineInAll) {
    EXPECT_NE(begin(nullptr), 1);
    EXPECT_EQ(errors.size(), 1u);
    for (int i = 0; i < 5; ++i)
        EXPECT_NE(encode(i), 1);
    EXPECT_EQ(errors.size(), 1u) << "the refused begin said why";
    EXPECT_NE(DeInitMP4Engine(), 1);
    expectUsable();
    errors.clear();
    for (int i = 0; i < 5; ++i)
        EXPECT_NE(encode(i), 1);
    EXPECT_THAT(errors, ElementsAre("no recording is open, frames are refused"));
    EXPECT_EQ(WaitMP4EngineFrames(6, 0), 6) << "failed frames have returned, too";
}

TEST_F(MP4WriterFailure, ASecondBeginIsRefusedAndTheRecordingGoesOn) {
    MemoryStream stream, other;
    EXPECT_EQ(begin(stream.file()), 1);
    EXPECT_EQ(encode(0), 1);
    EXPECT_NE(begin(other.file()), 1);
    EXPECT_THAT(errors, ElementsAre("a recording is already open"));
    EXPECT_NE(EncodeFrame(nullptr), 1);
    EXPECT_EQ(encode(1), 1);
    EXPECT_EQ(DeInitMP4Engine(), 1);
    EXPECT_EQ(other.bytes(), "");
    const test_support::TestDirectory dir;
    test_support::writeFile(dir / "out.mp4", stream.bytes());
    EXPECT_EQ(test_support::readVideo(dir / "out.mp4").size(), 2u);
}

TEST_F(MP4WriterFailure, AFullDiskFailsEveryLaterFrameWithOneLineInAll) {
    MemoryStream stream(400'000);
    EXPECT_EQ(begin(stream.file()), 1);
    int good = 0;
    while (good < 100 && encode(good) == 1)
        ++good;
    EXPECT_GE(good, 15);
    EXPECT_LT(good, 100);
    for (int i = 0; i < 5; ++i)
        EXPECT_NE(encode(i), 1);
    EXPECT_NE(DeInitMP4Engine(), 1);
    EXPECT_THAT(errors, ElementsAre("cannot write the video: No space left on device"));
    EXPECT_NE(std::ferror(stream.file()), 0);
    const test_support::TestDirectory dir;
    test_support::writeFile(dir / "out.mp4", stream.bytes());
    EXPECT_GE(test_support::readVideo(dir / "out.mp4").size(), 15u);
    expectUsable();
}

TEST_F(MP4WriterFailure, ADeviceWithoutRoomFailsAtTheBeginning) {
    std::FILE* full = std::fopen("/dev/full", "wb");
    ASSERT_NE(full, nullptr);
    EXPECT_NE(begin(full), 1);
    EXPECT_NE(encode(0), 1);
    EXPECT_THAT(errors, ElementsAre("cannot write the video: No space left on device"));
    std::fclose(full);
    expectUsable();
}

TEST_F(MP4WriterFailure, TheLastFramesAreNotLostInSilence) {
    // Room for the header alone: the one fragment is written when the recording ends.
    MemoryStream stream(1'500);
    EXPECT_EQ(begin(stream.file()), 1);
    EXPECT_EQ(encode(0), 1);
    EXPECT_NE(DeInitMP4Engine(), 1);
    EXPECT_THAT(errors, ElementsAre("cannot write the video: No space left on device"));
    EXPECT_NE(std::ferror(stream.file()), 0);
}

TEST_F(MP4WriterFailure, AReaderThatGoesAwayIsAFailedWriteWhereTheSignalIsIgnored) {
    const auto former = std::signal(SIGPIPE, SIG_IGN);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::FILE* stream = fdopen(ends[1], "wb");
    EXPECT_EQ(begin(stream), 1);
    close(ends[0]);
    int results = 0;
    for (int i = 0; i < 16; ++i)
        results = encode(i);
    EXPECT_NE(results, 1);
    EXPECT_NE(DeInitMP4Engine(), 1);
    EXPECT_THAT(errors, ElementsAre("cannot write the video: Broken pipe"));
    std::fclose(stream);
    std::signal(SIGPIPE, former);
}

TEST_F(MP4WriterFailure, AnExitWithARecordingOpenIsOrderly) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            static MemoryStream& stream = *new MemoryStream;
            begin(stream.file());
            encode(0);
            std::exit(7);
        },
        testing::ExitedWithCode(7), "^$");
}

}  // namespace
