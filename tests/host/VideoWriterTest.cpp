#include "media/VideoWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Clips.h"
#include "media/VideoReader.h"

namespace {

using namespace orbitwalk::media;
using clips::TempDir;

EncoderSettings small() {
    EncoderSettings settings;
    settings.width = 96;
    settings.height = 64;
    settings.frameRate = {30000, 1001};
    return settings;
}

TEST(VideoWriter, GivesBackTheFramesAtEverySpeedWholeOrInFragments) {
    constexpr int kFrames = 20;
    const TempDir dir;
    for (const bool fragmented : {false, true})
        for (const int speed : {0, 3, 7, 9}) {
            EncoderSettings settings = small();
            settings.fragmented = fragmented;
            settings.speed = speed;
            std::FILE* stream = std::fopen((dir / "out.mp4").c_str(), "wb");
            VideoWriter writer(stream, settings);
            for (int i = 0; i < kFrames; ++i)
                writer.write(clips::movingWaves(96, 64, i));
            writer.finish();
            std::fclose(stream);

            VideoReader reader(dir / "out.mp4");
            EXPECT_EQ(reader.expectedFrames(), kFrames) << fragmented << speed;
            EXPECT_EQ(reader.frameRate().numerator, 30000);
            EXPECT_EQ(reader.frameRate().denominator, 1001);
            const auto frames = clips::readFrames(dir / "out.mp4");
            ASSERT_EQ(frames.size(), std::size_t{kFrames}) << fragmented << speed;
            for (int i = 0; i < kFrames; ++i)
                EXPECT_GT(clips::psnr(frames[std::size_t(i)], clips::movingWaves(96, 64, i)), 38)
                    << "dB, frame " << i << " speed " << speed;
        }
}

TEST(VideoWriter, TakesTheStreamFromWhereItStands) {
    const TempDir dir;
    std::FILE* stream = std::fopen((dir / "out").c_str(), "wb");
    std::fputs("a preamble", stream);
    VideoWriter writer(stream, small());
    for (int i = 0; i < 5; ++i)
        writer.write(clips::movingWaves(96, 64, i));
    writer.finish();
    std::fclose(stream);
    const std::string bytes = clips::readFile(dir / "out");
    ASSERT_TRUE(bytes.starts_with("a preamble"));
    clips::writeFile(dir / "out.mp4", bytes.substr(10));
    EXPECT_EQ(clips::readFrames(dir / "out.mp4").size(), 5u);
}

TEST(VideoWriter, LowerQualityFactorMeansMoreBytesAndACloserPicture) {
    std::size_t bytes[2];
    for (const int i : {0, 1}) {
        clips::MemoryStream stream;
        EncoderSettings settings = small();
        settings.fragmented = true;
        settings.quality = i == 0 ? 10 : 40;
        VideoWriter writer(stream.file(), settings);
        for (int n = 0; n < 5; ++n)
            writer.write(clips::noise(96, 64, n));
        writer.finish();
        bytes[i] = stream.bytes().size();
    }
    EXPECT_GT(bytes[0], 2 * bytes[1]);
}

TEST(VideoWriter, AFailureIsSaidAgainByEveryLaterCall) {
    for (const bool fragmented : {false, true}) {
        EncoderSettings settings = small();
        settings.fragmented = fragmented;
        settings.frameRate = {30, 1};
        const TempDir dir;
        clips::MemoryStream memory(20000);
        // A file opened for reading fails at the first write; the other stream when it is full.
        clips::writeFile(dir / "read-only", "");
        std::FILE* readOnly = std::fopen((dir / "read-only").c_str(), "rb");
        std::string first, later;
        try {
            VideoWriter writer(fragmented ? memory.file() : readOnly, settings);
            try {
                for (int i = 0; i < 100; ++i)
                    writer.write(clips::noise(96, 64, i));
                writer.finish();
            } catch (const MediaError& error) {
                first = error.what();
            }
            try {
                writer.finish();
            } catch (const MediaError& error) {
                later = error.what();
            }
        } catch (const MediaError& error) {
            first = later = error.what();
        }
        EXPECT_EQ(first, fragmented ? "cannot write the video: No space left on device"
                                    : "cannot write the video: Bad file descriptor");
        EXPECT_EQ(later, first);
        std::fclose(readOnly);
    }
}

TEST(VideoWriter, RefusesAWholeFileOnAPipeAndAFrameOfTheWrongSize) {
    clips::MemoryStream stream;
    EXPECT_THROW(VideoWriter(stream.file(), small()), MediaError);
    EncoderSettings settings = small();
    settings.fragmented = true;
    VideoWriter writer(stream.file(), settings);
    EXPECT_THROW(writer.write(clips::movingWaves(96, 62, 0)), MediaError);
    EXPECT_NO_THROW(writer.write(clips::movingWaves(96, 64, 0)));
    EXPECT_NO_THROW(writer.finish());
}

}  // namespace
