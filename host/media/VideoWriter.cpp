#include "media/VideoWriter.h"

#include <new>
#include <string>

#include "media/AvSupport.h"
#include "media/StreamOutput.h"
#include "media/VideoEncoder.h"

extern "C" {
#include <libavutil/display.h>
#include <libavutil/imgutils.h>
}

namespace orbitwalk::media {

namespace {

void check(int result, const char* action) {
    if (result < 0)
        throw MediaError(std::string("cannot ") + action + " the video: " + avErrorText(result));
}

void markTurned(AVStream& track, int clockwiseDegrees) {
    constexpr std::size_t size = 9 * sizeof(std::int32_t);
    auto* matrix = reinterpret_cast<std::int32_t*>(
        av_stream_new_side_data(&track, AV_PKT_DATA_DISPLAYMATRIX, size));
    if (!matrix)
        throw std::bad_alloc();
    av_display_rotation_set(matrix, clockwiseDegrees);
}

FramePtr makePicture(const EncoderSettings& settings) {
    FramePtr picture = makeFrame();
    picture->format = AV_PIX_FMT_YUV420P;
    picture->width = settings.width;
    picture->height = settings.height;
    if (av_frame_get_buffer(picture.get(), 0) < 0)
        throw std::bad_alloc();
    return picture;
}

}  // namespace

struct VideoWriter::State {
    State(std::FILE* stream, const EncoderSettings& settings);

    void writeHeader();
    void fill(std::span<const std::uint8_t> i420);
    void encode(const AVFrame* frame);
    void mux();

    /// Runs one step; when it fails, so do all later ones.
    template <typename Step>
    void guarded(Step step) {
        if (!failure.empty())
            throw MediaError(failure);
        try {
            step();
        } catch (const MediaError& error) {
            failure = error.what();
            throw;
        }
    }

    const bool fragmented;
    // The container is freed before what it writes to.
    StreamOutput output;
    CodecPtr codec;
    OutputPtr container;
    AVStream* track = nullptr;  ///< Belongs to the container.
    FramePtr picture;
    PacketPtr packet;
    std::int64_t framesGiven = 0;
    std::string failure;  ///< Why the recording cannot go on; empty while it can.
};

VideoWriter::State::State(std::FILE* stream, const EncoderSettings& settings)
    : fragmented(settings.fragmented),
      output(stream, !settings.fragmented),
      codec(openEncoder(encoderCandidates(), settings)),
      picture(makePicture(settings)),
      packet(makePacket()) {
    AVFormatContext* mp4 = nullptr;
    check(avformat_alloc_output_context2(&mp4, nullptr, "mp4", nullptr), "write");
    container.reset(mp4);
    mp4->pb = output.io();
    // No version strings: the same frames give the same bytes.
    mp4->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_BITEXACT;
    av_dict_set(&mp4->metadata, "comment", kMadeWith, 0);
    track = avformat_new_stream(mp4, nullptr);
    if (!track)
        throw std::bad_alloc();
    check(avcodec_parameters_from_context(track->codecpar, codec.get()), "write");
    track->time_base = codec->time_base;
    track->avg_frame_rate = codec->framerate;
    if (settings.rotation != 0)
        markTurned(*track, settings.rotation);
    writeHeader();
}

void VideoWriter::State::writeHeader() {
    AVDictionary* options = nullptr;
    if (fragmented)
        av_dict_set(&options, "movflags", "frag_keyframe+empty_moov+default_base_moof", 0);
    const int result = avformat_write_header(container.get(), &options);
    av_dict_free(&options);
    check(result, "write");
    if (fragmented)
        output.flush();
}

void VideoWriter::State::fill(std::span<const std::uint8_t> i420) {
    check(av_frame_make_writable(picture.get()), "encode");
    std::uint8_t* planes[4];
    int strides[4];
    av_image_fill_arrays(planes, strides, i420.data(), AV_PIX_FMT_YUV420P, picture->width,
                         picture->height, 1);
    av_image_copy(picture->data, picture->linesize, const_cast<const std::uint8_t**>(planes),
                  strides, AV_PIX_FMT_YUV420P, picture->width, picture->height);
    picture->pts = framesGiven++;
}

/// Gives the encoder a frame, or null for the end, and writes the packets that it has ready.
void VideoWriter::State::encode(const AVFrame* frame) {
    check(avcodec_send_frame(codec.get(), frame), "encode");
    for (;;) {
        const int result = avcodec_receive_packet(codec.get(), packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return;
        check(result, "encode");
        mux();
    }
}

void VideoWriter::State::mux() {
    packet->stream_index = track->index;
    packet->duration = 1;
    av_packet_rescale_ts(packet.get(), codec->time_base, track->time_base);
    check(av_write_frame(container.get(), packet.get()), "write");
    av_packet_unref(packet.get());
    if (fragmented)
        output.flush();
}

VideoWriter::VideoWriter(std::FILE* stream, const EncoderSettings& settings) {
    silenceLibav();
    validate(settings);
    mState = std::make_unique<State>(stream, settings);
}

VideoWriter::~VideoWriter() = default;

void VideoWriter::write(std::span<const std::uint8_t> i420) {
    State& state = *mState;
    const AVFrame& picture = *state.picture;
    if (i420.size() != std::size_t(picture.width) * std::size_t(picture.height) * 3 / 2)
        throw MediaError("cannot encode the video: a frame of the wrong size");
    state.guarded([&] {
        state.fill(i420);
        state.encode(&picture);
    });
}

void VideoWriter::finish() {
    State& state = *mState;
    state.guarded([&] {
        state.encode(nullptr);
        check(av_write_trailer(state.container.get()), "write");
        state.output.flush();
    });
}

}  // namespace orbitwalk::media
