#include <MP4Writer.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>

#include "Clips.h"
#include "media/VideoReader.h"
#include "support/TestDirectory.h"
#include "support/VideoFile.h"

namespace {

using clips::MemoryStream;
using test_support::TestDirectory;

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

}  // namespace
