#include "media/VideoDecoder.h"

#include <algorithm>
#include <new>
#include <utility>

#include "media/AvSupport.h"
#include "media/MediaTypes.h"
#include "media/StreamFacts.h"

namespace orbitwalk::media {

namespace {

constexpr AVRational kTimeBase{1, AV_TIME_BASE};

/// Sound that ends a little before the picture, and durations rounded up, are no loss.
constexpr std::int64_t kDurationTolerance = AV_TIME_BASE / 2;

}  // namespace

VideoDecoder::VideoDecoder(const std::filesystem::path& file, Interrupted interrupted)
    : mComplaint("cannot read " + file.string() + ": "),
      mFrame(makeFrame()),
      mPacket(makePacket()) {
    silenceLibav();
    check(mInput.open(file, std::move(interrupted)));
    openDecoder();
}

void VideoDecoder::openDecoder() {
    const AVCodec* decoder = nullptr;
    mStreamIndex =
        av_find_best_stream(&mInput.container(), AVMEDIA_TYPE_VIDEO, -1, -1, &decoder, 0);
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
        if (result >= 0) {
            if (mFrame->decode_error_flags != 0 || (mFrame->flags & AV_FRAME_FLAG_CORRUPT) != 0)
                ++mDamaged;
            return mFrame.get();
        }
        if (result == AVERROR_EOF)
            return nullptr;
        if (result == AVERROR(ENOMEM))
            throw std::bad_alloc();
        if (result == AVERROR(EAGAIN))
            feed();
        else
            ++mLost;
    }
}

/// Gives the decoder one packet of the stream, or tells it that there are no more.
void VideoDecoder::feed() {
    int result = 0;
    do {
        av_packet_unref(mPacket.get());
        result = av_read_frame(&mInput.container(), mPacket.get());
        if (result >= 0)
            noteTimes();
    } while (result == AVERROR(EAGAIN) || (result >= 0 && mPacket->stream_index != mStreamIndex));

    const AVIOContext* io = container().pb;
    if (result == AVERROR_EXIT)
        check(result);
    if (result < 0 && io && io->error < 0 && io->error != AVERROR_EOF)
        check(io->error);
    // A packet that the decoder does not take is left out like a damaged picture.
    if (avcodec_send_packet(mCodec.get(), result < 0 ? nullptr : mPacket.get()) < 0 && result >= 0)
        ++mLost;
    av_packet_unref(mPacket.get());
}

void VideoDecoder::noteTimes() {
    const AVPacket& packet = *mPacket;
    if (packet.stream_index == mStreamIndex && packet.dts != AV_NOPTS_VALUE)
        mLastDecodingTime = std::max(mLastDecodingTime, packet.dts);
    if (packet.pts == AV_NOPTS_VALUE)
        return;
    const AVRational unit = container().streams[packet.stream_index]->time_base;
    mEnd = std::max(mEnd, av_rescale_q(packet.pts + packet.duration, unit, kTimeBase));
}

void VideoDecoder::seekBefore(std::int64_t time) {
    // Places are found by the time of decoding, which comes before that of showing.
    const std::int64_t early = av_rescale_q(AV_TIME_BASE, kTimeBase, stream().time_base);
    if (avformat_seek_file(&mInput.container(), mStreamIndex, INT64_MIN, time - early, time - early,
                           0) >= 0)
        avcodec_flush_buffers(mCodec.get());
}

std::int64_t VideoDecoder::picturesLeft(std::int64_t beforeTime) const {
    // A partial index has its later entries only where they were read.
    AVStream* indexed = container().streams[mStreamIndex];
    std::int64_t left = 0;
    for (int i = avformat_index_get_entries_count(indexed) - 1; i >= 0; --i) {
        const AVIndexEntry& entry = *avformat_index_get_entry(indexed, i);
        if (mLastDecodingTime == AV_NOPTS_VALUE || entry.timestamp <= mLastDecodingTime)
            break;
        left += entry.timestamp < beforeTime ? 1 : 0;
    }
    if (stream().nb_frames > 0 || container().duration <= 0 ||
        container().duration_estimation_method != AVFMT_DURATION_FROM_STREAM)
        return left;
    const std::int64_t begin =
        container().start_time == AV_NOPTS_VALUE ? 0 : container().start_time;
    const std::int64_t limit = beforeTime == INT64_MAX
                                   ? INT64_MAX
                                   : av_rescale_q(beforeTime, stream().time_base, kTimeBase);
    const std::int64_t end = std::min(begin + container().duration, limit);
    if (end - mEnd <= kDurationTolerance)
        return left;
    const FrameRate rate = frameRateOf(stream());
    return std::max(left, av_rescale_q(end - mEnd, kTimeBase, {rate.denominator, rate.numerator}));
}

void VideoDecoder::fail(const std::string& reason) const {
    throw MediaError(mComplaint + reason);
}

void VideoDecoder::check(int result) const {
    if (result < 0)
        fail(avErrorText(result));
}

}  // namespace orbitwalk::media
