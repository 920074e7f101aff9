#include "media/PictureFile.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "media/AvSupport.h"
#include "media/MediaTypes.h"

extern "C" {
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

namespace orbitwalk::media {

namespace {

/// Of 2 (best) to 31, as the MJPEG encoder counts.
constexpr int kJpegQuantiser = 3;

void require(int result, const char* what) {
    if (result < 0)
        throw MediaError(std::string(what) + ": " + avErrorText(result));
}

AVPixelFormat formatOf(const Picture& picture) {
    return picture.channels == 4 ? AV_PIX_FMT_RGBA : AV_PIX_FMT_RGB24;
}

/// What the content shows the picture to be coded in: libav has a demuxer for a stream of pictures
/// of each codec, by its name but for two.
AVCodecID codecOf(std::span<const std::uint8_t> padded, std::size_t size) {
    AVProbeData probe{};
    // The probe takes its buffer as one that it could write to.
    probe.buf = const_cast<std::uint8_t*>(padded.data());
    probe.buf_size = static_cast<int>(std::min<std::size_t>(size, 1 << 20));
    const AVInputFormat* format = av_probe_input_format(&probe, 1);
    constexpr std::string_view ending = "_pipe";
    std::string name = format ? format->name : "";
    if (!name.ends_with(ending))
        throw MediaError("not a picture");
    name.resize(name.size() - ending.size());
    if (name == "jpeg" || name == "j2k")
        name = name == "jpeg" ? "mjpeg" : "jpeg2000";
    const AVCodecDescriptor* codec = avcodec_descriptor_get_by_name(name.c_str());
    return codec ? codec->id : AV_CODEC_ID_NONE;
}

FramePtr decoded(AVCodecID id, std::span<std::uint8_t> padded, std::size_t size) {
    const AVCodec* decoder = avcodec_find_decoder(id);
    const CodecPtr codec(decoder ? avcodec_alloc_context3(decoder) : nullptr);
    if (!codec)
        throw MediaError("no decoder for the picture");
    codec->thread_count = 1;
    require(avcodec_open2(codec.get(), decoder, nullptr), "cannot open the decoder");
    const PacketPtr packet = makePacket();
    packet->data = padded.data();
    packet->size = static_cast<int>(size);
    require(avcodec_send_packet(codec.get(), packet.get()), "cannot decode the picture");
    avcodec_send_packet(codec.get(), nullptr);
    FramePtr frame = makeFrame();
    require(avcodec_receive_frame(codec.get(), frame.get()), "cannot decode the picture");
    return frame;
}

ScalerPtr scaler(const AVFrame& from, AVPixelFormat to, bool jpegColours) {
    ScalerPtr scaler(sws_alloc_context());
    if (!scaler)
        throw std::bad_alloc();
    const auto set = [&](const char* name, int value) {
        av_opt_set_int(scaler.get(), name, value, 0);
    };
    set("srcw", from.width);
    set("srch", from.height);
    set("src_format", from.format);
    set("dstw", from.width);
    set("dsth", from.height);
    set("dst_format", to);
    set("sws_flags", SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP);
    if (jpegColours) {
        // Colour samples stand in the middle of their four pixels.
        for (const char* side :
             {"src_h_chr_pos", "src_v_chr_pos", "dst_h_chr_pos", "dst_v_chr_pos"})
            set(side, 128);
    }
    require(sws_init_context(scaler.get(), nullptr, nullptr), "cannot convert the picture");
    return scaler;
}

/// By the display matrix that the decoder made of what the file says.
struct Turn {
    /// Of a pixel's place in the picture shown: where it is in the picture stored.
    std::array<int, 4> stored{1, 0, 0, 1};

    bool swapsSides() const { return stored[0] == 0; }
};

Turn turnOf(const AVFrame& frame) {
    const AVFrameSideData* data = av_frame_get_side_data(&frame, AV_FRAME_DATA_DISPLAYMATRIX);
    if (!data || data->size < 9 * sizeof(std::int32_t))
        return {};
    std::array<std::int32_t, 9> matrix;
    std::memcpy(matrix.data(), data->data, sizeof matrix);
    const auto sign = [](std::int32_t value) { return (value > 0) - (value < 0); };
    // Row vectors times the matrix give the place shown; the inverse of such a turn is its
    // transpose.
    const Turn turn{{sign(matrix[0]), sign(matrix[1]), sign(matrix[3]), sign(matrix[4])}};
    const bool isTurn = turn.stored[0] * turn.stored[3] - turn.stored[1] * turn.stored[2] != 0 &&
                        (turn.stored[0] == 0) == (turn.stored[3] == 0) &&
                        (turn.stored[0] == 0) != (turn.stored[1] == 0);
    return isTurn ? turn : Turn{};
}

Picture turned(Picture picture, const Turn& turn) {
    if (turn.stored == Turn{}.stored)
        return picture;
    Picture shown{turn.swapsSides() ? picture.height : picture.width,
                  turn.swapsSides() ? picture.width : picture.height, 3,
                  std::vector<std::uint8_t>(picture.pixels.size())};
    const auto [xx, xy, yx, yy] = turn.stored;
    // Where a stored coordinate runs down, it starts at the far end.
    const int left = xx + xy < 0 ? picture.width - 1 : 0;
    std::uint8_t* pixel = shown.pixels.data();
    for (int y = 0; y < shown.height; ++y)
        for (int x = 0; x < shown.width; ++x, pixel += 3) {
            const int column = x * xx + y * xy + left;
            const int row = x * yx + y * yy + (yx + yy < 0 ? picture.height - 1 : 0);
            std::memcpy(pixel, &picture.pixels[3 * (std::size_t(row) * picture.width + column)], 3);
        }
    return shown;
}

std::vector<std::uint8_t> encoded(AVCodecContext& codec, const AVFrame& frame) {
    require(avcodec_send_frame(&codec, &frame), "cannot encode a picture");
    avcodec_send_frame(&codec, nullptr);
    const PacketPtr packet = makePacket();
    require(avcodec_receive_packet(&codec, packet.get()), "cannot encode a picture");
    return {packet->data, packet->data + packet->size};
}

CodecPtr encoder(AVCodecID id, const Picture& picture, AVPixelFormat format, const char* option,
                 const char* value) {
    const AVCodec* encoder = avcodec_find_encoder(id);
    CodecPtr codec(encoder ? avcodec_alloc_context3(encoder) : nullptr);
    if (!codec)
        throw MediaError("no encoder for pictures");
    codec->width = picture.width;
    codec->height = picture.height;
    codec->pix_fmt = format;
    codec->time_base = {1, 1};
    codec->thread_count = 1;
    codec->color_range = AVCOL_RANGE_JPEG;
    codec->compression_level = 3;
    codec->flags |= AV_CODEC_FLAG_QSCALE | AV_CODEC_FLAG_BITEXACT;
    codec->global_quality = FF_QP2LAMBDA * kJpegQuantiser;
    AVDictionary* options = nullptr;
    av_dict_set(&options, option, value, 0);
    const int result = avcodec_open2(codec.get(), encoder, &options);
    av_dict_free(&options);
    require(result, "cannot open the encoder");
    return codec;
}

/// The picture's pixels as a frame, which does not own them.
FramePtr frameOf(const Picture& picture) {
    FramePtr frame = makeFrame();
    frame->width = picture.width;
    frame->height = picture.height;
    frame->format = formatOf(picture);
    frame->data[0] = const_cast<std::uint8_t*>(picture.pixels.data());
    frame->linesize[0] = picture.width * picture.channels;
    return frame;
}

}  // namespace

Picture decodePicture(std::span<const char> bytes) {
    silenceLibav();
    constexpr std::size_t kMost = std::size_t{1} << 30;
    if (bytes.empty() || bytes.size() > kMost)
        throw MediaError("not a picture");
    std::vector<std::uint8_t> padded(bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE);
    std::memcpy(padded.data(), bytes.data(), bytes.size());
    const FramePtr frame = decoded(codecOf(padded, bytes.size()), padded, bytes.size());
    Picture picture{frame->width, frame->height, 3, {}};
    picture.pixels.resize(std::size_t{3} * picture.width * picture.height);
    const bool isJpeg =
        frame->color_range == AVCOL_RANGE_JPEG && frame->chroma_location == AVCHROMA_LOC_CENTER;
    const ScalerPtr convert = scaler(*frame, AV_PIX_FMT_RGB24, isJpeg);
    std::uint8_t* const planes[4] = {picture.pixels.data()};
    const int strides[4] = {3 * picture.width};
    require(
        sws_scale(convert.get(), frame->data, frame->linesize, 0, frame->height, planes, strides),
        "cannot convert the picture");
    return turned(std::move(picture), turnOf(*frame));
}

std::vector<std::uint8_t> encodePng(const Picture& picture) {
    silenceLibav();
    const CodecPtr codec = encoder(AV_CODEC_ID_PNG, picture, formatOf(picture), "pred", "paeth");
    return encoded(*codec, *frameOf(picture));
}

std::vector<std::uint8_t> encodeJpeg(const Picture& picture) {
    silenceLibav();
    const FramePtr rgb = frameOf(picture);
    const FramePtr frame = makeFrame();
    frame->width = picture.width;
    frame->height = picture.height;
    frame->format = AV_PIX_FMT_YUVJ420P;
    frame->quality = FF_QP2LAMBDA * kJpegQuantiser;
    require(av_frame_get_buffer(frame.get(), 0), "no memory for a picture");
    const ScalerPtr convert = scaler(*rgb, AV_PIX_FMT_YUVJ420P, true);
    require(sws_scale(convert.get(), rgb->data, rgb->linesize, 0, rgb->height, frame->data,
                      frame->linesize),
            "cannot convert a picture");
    const CodecPtr codec =
        encoder(AV_CODEC_ID_MJPEG, picture, AV_PIX_FMT_YUVJ420P, "huffman", "optimal");
    return encoded(*codec, *frame);
}

}  // namespace orbitwalk::media
