#include "media/VideoWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Clips.h"
#include "media/VideoReader.h"
#include "support/TestDirectory.h"
#include "support/VideoFile.h"

namespace {

using namespace orbitwalk::media;
using test_support::TestDirectory;

EncoderSettings small() {
    EncoderSettings settings;
    settings.width = 96;
    settings.height = 64;
    settings.frameRate = {30000, 1001};
    return settings;
}

TEST(VideoWriter, GivesBackTheFramesAtEverySpeedWholeOrInFragments) {
    constexpr int kFrames = 20;
    const TestDirectory dir;
    for (const bool fragmented : {false, true})
        for (const int speed : {0, 3, 7, 9}) {
            EncoderSettings settings = small();
            settings.fragmented = fragmented;
            settings.speed = speed;
            test_support::writeVideo(dir / "out.mp4", settings, kFrames,
                                     [](int i) { return clips::movingWaves(96, 64, i); });
            VideoReader reader(dir / "out.mp4");
            EXPECT_EQ(reader.expectedFrames(), kFrames) << fragmented << speed;
            EXPECT_EQ(reader.frameRate().numerator, 30000);
            EXPECT_EQ(reader.frameRate().denominator, 1001);
            const auto frames = test_support::readVideo(dir / "out.mp4");
            ASSERT_EQ(frames.size(), std::size_t{kFrames}) << fragmented << speed;
            for (int i = 0; i < kFrames; ++i)
                EXPECT_GT(clips::psnr(frames[std::size_t(i)], clips::movingWaves(96, 64, i)), 38)
                    << "dB, frame " << i << " speed " << speed;
        }
}

TEST(VideoWriter, TakesTheStreamFromWhereItStands) {
    const TestDirectory dir;
    std::FILE* stream = std::fopen((dir / "out").c_str(), "wb");
    std::fputs("a preamble", stream);
    VideoWriter writer(stream, small());
    for (int i = 0; i < 5; ++i)
        writer.write(clips::movingWaves(96, 64, i));
    writer.finish();
    std::fclose(stream);
    const std::string bytes = test_support::contentOf(dir / "out");
    ASSERT_TRUE(bytes.starts_with("a preamble"));
    test_support::writeFile(dir / "out.mp4", bytes.substr(10));
    EXPECT_EQ(test_support::readVideo(dir / "out.mp4").size(), 5u);
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

std::string complaintOf(const std::function<void()>& action) {
    try {
        action();
        return {};
    } catch (const MediaError& error) {
        return error.what();
    }
}

void writeNoise(VideoWriter& writer) {
    for (int i = 0; i < 100; ++i)
        writer.write(clips::noise(96, 64, i));
    writer.finish();
}

TEST(VideoWriter, AFailureIsSaidAgainByEveryLaterCall) {
    clips::MemoryStream memory(20000);
    EncoderSettings settings = small();
    settings.fragmented = true;
    VideoWriter fragments(memory.file(), settings);
    for (const auto& call : {std::function([&] { writeNoise(fragments); }),
                             std::function([&] { fragments.write(clips::noise(96, 64, 0)); }),
                             std::function([&] { fragments.finish(); })})
        EXPECT_EQ(complaintOf(call), "cannot write the video: No space left on device");
}

TEST(VideoWriter, AWholeFileThatCannotBeWrittenIsSaid) {
    const TestDirectory dir;
    test_support::writeFile(dir / "read-only", "");
    std::FILE* readOnly = std::fopen((dir / "read-only").c_str(), "rb");
    const auto record = [&] {
        VideoWriter writer(readOnly, small());
        writeNoise(writer);
    };
    EXPECT_EQ(complaintOf(record), "cannot write the video: Bad file descriptor");
    std::fclose(readOnly);
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
