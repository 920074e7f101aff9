#include <MP4Writer.h>
#include <OrbitwalkPlatform.h>
#include <android/log.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <thread>

#include "Clips.h"
#include "media/VideoReader.h"
#include "support/TestDirectory.h"
#include "support/VideoFile.h"

namespace {

using clips::MemoryStream;
using test_support::TestDirectory;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr int kWidth = 96;
constexpr int kHeight = 64;

int begin(std::FILE* file, int bitRate = 2'000'000) {
    return InitMP4Engine(nullptr, "unused", kWidth, kHeight, 0, bitRate, 15, 30, 7, -1, file);
}

/// Records so many frames of moving waves; every call must succeed.
void record(std::FILE* file, int frames) {
    ASSERT_EQ(begin(file), 1);
    for (int i = 0; i < frames; ++i)
        ASSERT_EQ(EncodeFrame(clips::movingWaves(kWidth, kHeight, i).data()), 1);
    ASSERT_EQ(DeInitMP4Engine(), 1);
}

TEST(MP4Writer, GivesBackEveryFrameAtThirtyAFrameWithAKeyFrameAtEveryFifteenth) {
    constexpr int kFrames = 40;
    MemoryStream stream;
    record(stream.file(), kFrames);
    const TestDirectory dir;
    test_support::writeFile(dir / "out.mp4", stream.bytes());

    const orbitwalk::media::VideoReader reader(dir / "out.mp4");
    EXPECT_EQ(reader.width(), kWidth);
    EXPECT_EQ(reader.height(), kHeight);
    EXPECT_EQ(reader.frameRate().numerator, 30 * reader.frameRate().denominator);
    EXPECT_EQ(reader.rotationDegrees(), 0);
    const auto frames = test_support::readVideo(dir / "out.mp4");
    ASSERT_EQ(frames.size(), std::size_t{kFrames});
    // 2 Mbit/s are a byte a pixel here: the picture comes back all but unchanged.
    for (int i = 0; i < kFrames; ++i)
        EXPECT_GT(clips::psnr(frames[std::size_t(i)], clips::movingWaves(kWidth, kHeight, i)), 40)
            << "dB, frame " << i;

    const auto packets = clips::packets(dir / "out.mp4");
    ASSERT_EQ(packets.size(), std::size_t{kFrames});
    for (int i = 0; i < kFrames; ++i) {
        const auto& packet = packets[std::size_t(i)];
        EXPECT_EQ(packet.isKey, i % 15 == 0) << i;
        EXPECT_NEAR(packet.seconds, i / 30.0, 1e-4) << i;
        EXPECT_NEAR(packet.duration, 1 / 30.0, 1e-4) << i;
    }
}

TEST(MP4Writer, KeepsToTheBitRateOnContentThatCannotBeForeseen) {
    constexpr int kFrames = 120;
    constexpr int kBitRate = 500'000;
    MemoryStream stream;
    ASSERT_EQ(begin(stream.file(), kBitRate), 1);
    for (int i = 0; i < kFrames; ++i)
        ASSERT_EQ(EncodeFrame(clips::noise(kWidth, kHeight, i).data()), 1);
    ASSERT_EQ(DeInitMP4Engine(), 1);
    const double rate = double(stream.bytes().size()) * 8 * 30 / kFrames;
    EXPECT_NEAR(rate / kBitRate, 1, 0.25);
}

TEST(MP4Writer, WritesIntoAPipe) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::string received;
    std::thread reader([&] {
        char chunk[4096];
        for (ssize_t n; (n = read(ends[0], chunk, sizeof chunk)) > 0;)
            received.append(chunk, std::size_t(n));
    });
    std::FILE* stream = fdopen(ends[1], "wb");
    record(stream, 20);
    std::fclose(stream);
    reader.join();
    close(ends[0]);
    MemoryStream memory;
    record(memory.file(), 20);
    EXPECT_EQ(received, memory.bytes()) << "the same frames give the same bytes everywhere";
}

/// Number of whole moof + mdat pairs at the beginning of an MP4.
int wholeFragments(const std::string& bytes) {
    int fragments = 0;
    for (std::size_t at = 0; at + 8 <= bytes.size();) {
        std::size_t size = 0;
        for (std::size_t i = 0; i < 4; ++i)
            size = size << 8 | static_cast<unsigned char>(bytes[at + i]);
        if (size < 8 || at + size > bytes.size())
            break;
        fragments += bytes.compare(at + 4, 4, "mdat") == 0;
        at += size;
    }
    return fragments;
}

TEST(MP4Writer, AnIntervalIsOnTheStreamOnceTheNextKeyFrameWasGiven) {
    MemoryStream stream;
    ASSERT_EQ(begin(stream.file()), 1);
    const TestDirectory dir;
    for (int i = 0; i < 46; ++i) {
        ASSERT_EQ(EncodeFrame(clips::movingWaves(kWidth, kHeight, i).data()), 1);
        ASSERT_EQ(wholeFragments(stream.bytes()), i / 15) << i;
    }
    // Killed here: what the stream holds plays.
    test_support::writeFile(dir / "killed.mp4", stream.bytes());
    EXPECT_EQ(test_support::readVideo(dir / "killed.mp4").size(), 45u);
    EXPECT_EQ(DeInitMP4Engine(), 1);
    EXPECT_EQ(wholeFragments(stream.bytes()), 4);
}

TEST(MP4Writer, AnotherThreadWaitsForFramesToReturn) {
    MemoryStream stream;
    ASSERT_EQ(begin(stream.file()), 1);
    EXPECT_EQ(WaitMP4EngineFrames(1, 0), 0);
    EXPECT_EQ(WaitMP4EngineFrames(1, -5), 0);
    int seen = 0;
    std::thread waiter([&] { seen = WaitMP4EngineFrames(3, 60'000); });
    for (int i = 0; i < 3; ++i)
        EncodeFrame(clips::movingWaves(kWidth, kHeight, i).data());
    waiter.join();
    EXPECT_EQ(seen, 3);
    DeInitMP4Engine();
    EXPECT_EQ(WaitMP4EngineFrames(4, 0), 3) << "of the last recording, when none is open";
    record(stream.file(), 1);
    EXPECT_EQ(WaitMP4EngineFrames(1, 60'000), 1);
}

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

int encode(int frame) {
    return EncodeFrame(clips::noise(kWidth, kHeight, frame).data());
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
    const TestDirectory dir;
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
    const TestDirectory dir;
    test_support::writeFile(dir / "out.mp4", stream.bytes());
    EXPECT_GE(test_support::readVideo(dir / "out.mp4").size(), 15u);
    expectUsable();
}

TEST_F(MP4WriterFailure, NeitherTheHeaderNorTheLastFramesAreLostInSilence) {
    const auto former = std::signal(SIGPIPE, SIG_IGN);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    MemoryStream header(1'500);  // The one fragment is written when the recording ends.
    const struct {
        std::FILE* stream;
        int begun, frames, encoded;
        const char* reason;
    } cases[] = {{std::fopen("/dev/full", "wb"), 0, 1, 0, "No space left on device"},
                 {header.file(), 1, 1, 1, "No space left on device"},
                 {fdopen(ends[1], "wb"), 1, 16, 0, "Broken pipe"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        errors.clear();
        EXPECT_EQ(begin(c.stream) == 1, c.begun == 1);
        if (c.frames == 16)
            close(ends[0]);
        int result = 0;
        for (int i = 0; i < c.frames; ++i)
            result = encode(i);
        EXPECT_EQ(result == 1, c.encoded == 1);
        EXPECT_TRUE(c.begun == 0 || DeInitMP4Engine() != 1);
        EXPECT_THAT(errors, ElementsAre(std::string("cannot write the video: ") + c.reason));
        EXPECT_NE(std::ferror(c.stream), 0);
        expectUsable();
    }
    std::fclose(cases[0].stream);
    std::fclose(cases[2].stream);
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
