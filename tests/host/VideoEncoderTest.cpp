#include <gtest/gtest.h>

#include <algorithm>

#include "media/AvSupport.h"
#include "media/VideoEncoder.h"

namespace {

using namespace orbitwalk::media;

EncoderSettings small() {
    EncoderSettings settings;
    settings.width = 64;
    settings.height = 48;
    return settings;
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
            std::fill_n(frame->data[plane], frame->linesize[plane] * (plane == 0 ? 48 : 24), 128);
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

TEST(EncoderSettings, EachSettingHasItsRange) {
    const struct {
        const char* name;
        void (*spoil)(EncoderSettings&);
    } cases[] = {
        {"frame size 0x48", [](EncoderSettings& s) { s.width = 0; }},
        {"frame size 64x-2", [](EncoderSettings& s) { s.height = -2; }},
        {"frame size 63x48", [](EncoderSettings& s) { s.width = 63; }},
        {"frame size 64x16386", [](EncoderSettings& s) { s.height = 16386; }},
        {"frame rate 0/1", [](EncoderSettings& s) { s.frameRate.numerator = 0; }},
        {"frame rate 30/-1", [](EncoderSettings& s) { s.frameRate.denominator = -1; }},
        {"bit rate 999", [](EncoderSettings& s) { s.bitRate = 999; }},
        {"quality 52", [](EncoderSettings& s) { s.quality = 52; }},
        {"key-frame interval 0", [](EncoderSettings& s) { s.keyFrameInterval = 0; }},
        {"speed 10", [](EncoderSettings& s) { s.speed = 10; }},
        {"threads -1", [](EncoderSettings& s) { s.threads = -1; }},
        {"rotation 45", [](EncoderSettings& s) { s.rotation = 45; }},
    };
    EXPECT_NO_THROW(validate(small()));
    for (const auto& c : cases) {
        EncoderSettings settings = small();
        c.spoil(settings);
        try {
            validate(settings);
            ADD_FAILURE() << "accepted " << c.name;
        } catch (const MediaError& error) {
            EXPECT_EQ(error.what(), std::string("cannot record with ") + c.name);
        }
    }
}

}  // namespace
