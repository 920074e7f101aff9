#pragma once

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

namespace orbitwalk::media {

/// Frees what libav allocates, each kind with its own call.
struct AvDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};
using FramePtr = std::unique_ptr<AVFrame, AvDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, AvDeleter>;
using CodecPtr = std::unique_ptr<AVCodecContext, AvDeleter>;
using ScalerPtr = std::unique_ptr<SwsContext, AvDeleter>;

/// A container opened for reading, with the file under it.
struct InputCloser {
    void operator()(AVFormatContext* container) const { avformat_close_input(&container); }
};
using InputPtr = std::unique_ptr<AVFormatContext, InputCloser>;

/// A container being written; what it writes to is owned elsewhere.
struct OutputCloser {
    void operator()(AVFormatContext* container) const { avformat_free_context(container); }
};
using OutputPtr = std::unique_ptr<AVFormatContext, OutputCloser>;

}  // namespace orbitwalk::media
