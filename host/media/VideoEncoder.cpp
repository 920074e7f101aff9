#include "media/VideoEncoder.h"

#include <algorithm>
#include <array>
#include <new>
#include <string>

#include "media/AvSupport.h"

namespace orbitwalk::media {

namespace {

/// x264's preset for each speed. From 7 on one core keeps up with 1080p at 30 frames/s.
constexpr std::array kPresets = {"veryslow", "slower",    "slow",      "medium",    "fast",
                                 "veryfast", "superfast", "ultrafast", "ultrafast", "ultrafast"};

struct Options {
    Options() = default;
    ~Options() { av_dict_free(&entries); }
    Options(const Options&) = delete;
    Options& operator=(const Options&) = delete;

    void set(const char* name, const char* value) { av_dict_set(&entries, name, value, 0); }

    AVDictionary* entries = nullptr;
};

bool takesI420(const AVCodec& codec) {
    for (const AVPixelFormat* format = codec.pix_fmts; format && *format != AV_PIX_FMT_NONE;
         ++format)
        if (*format == AV_PIX_FMT_YUV420P)
            return true;
    return false;
}

/// Key frames stand where the interval says: "0" turns scene cuts off in x264, and what no score
/// reaches does in the MPEG encoders, which refuse closed groups of pictures without it.
const char* noSceneCuts(const AVCodec& encoder) {
    return encoder.id == AV_CODEC_ID_MPEG4 ? "1000000000" : "0";
}

void tagColours(AVCodecContext& codec, ColourMatrix matrix) {
    const bool highDefinition = matrix == ColourMatrix::Bt709;
    codec.color_range = AVCOL_RANGE_MPEG;
    codec.colorspace = highDefinition ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    codec.color_primaries = highDefinition ? AVCOL_PRI_BT709 : AVCOL_PRI_SMPTE170M;
    codec.color_trc = highDefinition ? AVCOL_TRC_BT709 : AVCOL_TRC_SMPTE170M;
    codec.chroma_sample_location = AVCHROMA_LOC_LEFT;
}

void setRate(AVCodecContext& codec, const EncoderSettings& settings, Options& options) {
    const bool isMpeg4 = codec.codec_id == AV_CODEC_ID_MPEG4;
    if (settings.bitRate > 0) {
        codec.bit_rate = settings.bitRate;
        if (isMpeg4)
            return;
        // A buffer of half a second: the rate holds over every stretch, and short recordings do not
        // start with a burst of twice the rate.
        codec.rc_max_rate = settings.bitRate;
        codec.rc_buffer_size = static_cast<int>(settings.bitRate / 2);
        return;
    }
    options.set("crf", std::to_string(settings.quality).c_str());
    if (isMpeg4) {
        // Six steps of x264's quantiser double its step size; MPEG-4's is linear from 1 to 31.
        codec.flags |= AV_CODEC_FLAG_QSCALE;
        codec.global_quality = FF_QP2LAMBDA * std::clamp(settings.quality / 6, 1, 31);
    }
}

CodecPtr open(const AVCodec& encoder, const EncoderSettings& settings, int& result) {
    CodecPtr codec(avcodec_alloc_context3(&encoder));
    if (!codec)
        throw std::bad_alloc();
    codec->width = settings.width;
    codec->height = settings.height;
    codec->pix_fmt = AV_PIX_FMT_YUV420P;
    codec->framerate = {settings.frameRate.numerator, settings.frameRate.denominator};
    codec->time_base = av_inv_q(codec->framerate);
    codec->gop_size = settings.keyFrameInterval;
    codec->thread_count = settings.threads;
    // Parameter sets belong in the MP4's header; no picture refers across a key frame.
    codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER | AV_CODEC_FLAG_CLOSED_GOP;
    tagColours(*codec, settings.matrix.value_or(colourMatrixOf(settings.width, settings.height)));

    Options options;
    options.set("preset", kPresets.at(static_cast<std::size_t>(settings.speed)));
    options.set("sc_threshold", noSceneCuts(encoder));
    if (settings.fragmented) {
        // Every frame leaves at once: no look-ahead, no pictures out of order.
        options.set("tune", "zerolatency");
        codec->max_b_frames = 0;
    }
    setRate(*codec, settings, options);
    result = avcodec_open2(codec.get(), &encoder, &options.entries);
    return result < 0 ? nullptr : std::move(codec);
}

}  // namespace

std::vector<const AVCodec*> encoderCandidates() {
    std::vector<const AVCodec*> candidates;
    if (const AVCodec* x264 = avcodec_find_encoder_by_name("libx264"))
        candidates.push_back(x264);
    void* position = nullptr;
    while (const AVCodec* codec = av_codec_iterate(&position))
        if (av_codec_is_encoder(codec) && codec->id == AV_CODEC_ID_H264 && takesI420(*codec) &&
            std::find(candidates.begin(), candidates.end(), codec) == candidates.end())
            candidates.push_back(codec);
    if (const AVCodec* mpeg4 = avcodec_find_encoder(AV_CODEC_ID_MPEG4))
        candidates.push_back(mpeg4);
    return candidates;
}

CodecPtr openEncoder(const std::vector<const AVCodec*>& candidates,
                     const EncoderSettings& settings) {
    int result = AVERROR_ENCODER_NOT_FOUND;
    for (const AVCodec* candidate : candidates)
        if (CodecPtr codec = open(*candidate, settings, result))
            return codec;
    throw MediaError("cannot open a video encoder: " + avErrorText(result));
}

}  // namespace orbitwalk::media
