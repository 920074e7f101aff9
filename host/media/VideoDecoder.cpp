#include "media/VideoDecoder.h"

#include <new>

#include "media/AvSupport.h"
#include "media/MediaTypes.h"

namespace orbitwalk::media {

VideoDecoder::VideoDecoder(const std::filesystem::path& file)
    : mComplaint("cannot read " + file.string() + ": "),
      mFrame(makeFrame()),
      mPacket(makePacket()) {
    silenceLibav();
    openContainer(file);
    openDecoder();
}

void VideoDecoder::openContainer(const std::filesystem::path& file) {
    // The protocol is named, so that a colon in the file's name is not taken for one.
    const std::string url = "file:" + file.string();
    AVFormatContext* container = nullptr;
    check(avformat_open_input(&container, url.c_str(), nullptr, nullptr));
    mContainer.reset(container);
    check(avformat_find_stream_info(container, nullptr));
}

void VideoDecoder::openDecoder() {
    const AVCodec* decoder = nullptr;
    mStreamIndex = av_find_best_stream(mContainer.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &decoder, 0);
    if (mStreamIndex == AVERROR_DECODER_NOT_FOUND)
        fail("no decoder for its video");
    // The cover picture of a song is a video stream too, to libav.
    if (mStreamIndex < 0 || (stream().disposition & AV_DISPOSITION_ATTACHED_PIC) != 0)
        fail("no video in it");
    mCodec.reset(avcodec_alloc_context3(decoder));
    if (!mCodec)
        throw std::bad_alloc();
    check(avcodec_parameters_to_context(mCodec.get(), stream().codecpar));
    mCodec->pkt_timebase = stream().time_base;
    // One thread: what the pictures are read for takes far longer than decoding them, and nothing
    // is decoded ahead.
    mCodec->thread_count = 1;
    check(avcodec_open2(mCodec.get(), decoder, nullptr));
}

const AVFrame* VideoDecoder::next() {
    for (;;) {
        const int result = avcodec_receive_frame(mCodec.get(), mFrame.get());
        if (result >= 0)
            return mFrame.get();
        if (result == AVERROR_EOF)
            return nullptr;
        if (result == AVERROR(ENOMEM))
            throw std::bad_alloc();
        // Any other result is a damaged picture, which is left out.
        if (result == AVERROR(EAGAIN))
            feed();
    }
}

/// Gives the decoder one packet of the stream, or tells it that there are no more.
void VideoDecoder::feed() {
    int result = 0;
    do {
        av_packet_unref(mPacket.get());
        result = av_read_frame(mContainer.get(), mPacket.get());
    } while (result == AVERROR(EAGAIN) || (result >= 0 && mPacket->stream_index != mStreamIndex));

    const AVIOContext* io = mContainer->pb;
    if (result < 0 && io && io->error < 0 && io->error != AVERROR_EOF)
        check(io->error);
    // A damaged packet is left out like a damaged picture: the result of sending it does not
    // matter.
    avcodec_send_packet(mCodec.get(), result < 0 ? nullptr : mPacket.get());
    av_packet_unref(mPacket.get());
}

void VideoDecoder::fail(const std::string& reason) const {
    throw MediaError(mComplaint + reason);
}

void VideoDecoder::check(int result) const {
    if (result < 0)
        fail(avErrorText(result));
}

}  // namespace orbitwalk::media
