#include "media/VideoWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "Clips.h"
#include "media/AvSupport.h"
#include "media/VideoEncoder.h"
#include "media/VideoReader.h"
#include "support/Complaint.h"
#include "support/TestDirectory.h"
#include "support/VideoFile.h"

namespace {

using namespace orbitwalk::media;
using test_support::complaintOf;
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

TEST(VideoWriter, AWholeFileThatCannotBeWrittenIsSaid) {
    const TestDirectory dir;
    test_support::writeFile(dir / "read-only", "");
    std::FILE* readOnly = std::fopen((dir / "read-only").c_str(), "rb");
    const auto record = [&] {
        VideoWriter writer(readOnly, small());
        for (int i = 0; i < 100; ++i)
            writer.write(clips::noise(96, 64, i));
        writer.finish();
    };
    EXPECT_EQ(complaintOf<MediaError>(record), "cannot write the video: Bad file descriptor");
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

TEST(VideoEncoder, PrefersX264AndEndsWithMpeg4) {
    const auto candidates = encoderCandidates();
    ASSERT_GE(candidates.size(), 2u);
    EXPECT_STREQ(candidates.front()->name, "libx264");
    EXPECT_EQ(candidates.back()->id, AV_CODEC_ID_MPEG4);
}

TEST(VideoEncoder, Mpeg4EncodesWithARateAndWithAQuality) {
    const AVCodec* mpeg4 = avcodec_find_encoder(AV_CODEC_ID_MPEG4);
    for (const std::int64_t bitRate : {0, 1'000'000}) {
        EncoderSettings settings = small();
        settings.bitRate = bitRate;
        const CodecPtr codec = openEncoder({mpeg4}, settings);
        const FramePtr frame = makeFrame();
        frame->format = codec->pix_fmt;
        frame->width = codec->width;
        frame->height = codec->height;
        ASSERT_EQ(av_frame_get_buffer(frame.get(), 0), 0);
        for (int plane = 0; plane < 3; ++plane)
            std::fill_n(frame->data[plane], frame->linesize[plane] * (plane == 0 ? 64 : 32), 128);
        const PacketPtr packet = makePacket();
        for (int i = 0; i < 31; ++i) {
            frame->pts = i;
            ASSERT_EQ(avcodec_send_frame(codec.get(), frame.get()), 0);
            ASSERT_EQ(avcodec_receive_packet(codec.get(), packet.get()), 0);
            EXPECT_EQ((packet->flags & AV_PKT_FLAG_KEY) != 0, i % 15 == 0) << i;
        }
    }
}

TEST(VideoEncoder, GoesOnToTheNextWhenOneDoesNotAcceptTheSettings) {
    silenceLibav();
    // GIF takes no 4:2:0 pictures.
    const AVCodec* refuses = avcodec_find_encoder(AV_CODEC_ID_GIF);
    const AVCodec* mpeg4 = avcodec_find_encoder(AV_CODEC_ID_MPEG4);
    const CodecPtr codec = openEncoder({refuses, mpeg4}, small());
    EXPECT_EQ(codec->codec_id, AV_CODEC_ID_MPEG4);
    EXPECT_THROW(openEncoder({refuses}, small()), MediaError);
    EXPECT_THROW(openEncoder({}, small()), MediaError);
}

// What a host can ask of the MP4 writer is checked there.
TEST(EncoderSettings, EachSettingHasItsRange) {
    const struct {
        const char* name;
        void (*spoil)(EncoderSettings&);
    } cases[] = {
        {"frame size 96x-2", [](EncoderSettings& s) { s.height = -2; }},
        {"frame size 96x16386", [](EncoderSettings& s) { s.height = 16386; }},
        {"frame rate 30000/-1", [](EncoderSettings& s) { s.frameRate.denominator = -1; }},
        {"bit rate 999", [](EncoderSettings& s) { s.bitRate = 999; }},
        {"quality 52", [](EncoderSettings& s) { s.quality = 52; }},
        {"threads -1", [](EncoderSettings& s) { s.threads = -1; }},
        {"rotation 45", [](EncoderSettings& s) { s.rotation = 45; }},
    };
    EXPECT_NO_THROW(validate(small()));
    for (const auto& c : cases) {
        EncoderSettings settings = small();
        c.spoil(settings);
        EXPECT_EQ(complaintOf<MediaError>([&] { validate(settings); }),
                  std::string("cannot record with ") + c.name);
    }
}

}  // namespace
