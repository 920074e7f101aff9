#include "media/VideoReader.h"

#include <algorithm>
#include <atomic>
#include <string>
#include <utility>

#include "media/FrameTimes.h"
#include "media/I420Packer.h"
#include "media/StreamFacts.h"
#include "media/ToneMapper.h"
#include "media/VideoDecoder.h"

extern "C" {
#include <libavutil/parseutils.h>
}

namespace orbitwalk::media {

struct VideoReader::State {
    State(const std::filesystem::path& file, const ReadOptions& options)
        : decoder(
              file,
              [this, asked = options.interrupted] { return isInterrupted || (asked && asked()); }),
          times(decoder.stream(), options) {}

    const AVFrame* nextWithinTimes();

    std::atomic<bool> isInterrupted = false;  ///< Before the decoder, which asks for it.
    VideoDecoder decoder;
    FrameTimes times;
    I420Packer packer;
    ToneMapper toneMapper;
    const AVFrame* pending = nullptr;  ///< The first picture, until it was read.
    int width = 0;                     ///< As coded, perhaps odd.
    int height = 0;
    double pixelAspect = 1;
    bool wideColour = false;
    std::int64_t read = 0;
    bool ended = false;  ///< The file has no more pictures.
};

VideoReader::VideoReader(const std::filesystem::path& file, ReadOptions options)
    : mState(std::make_unique<State>(file, options)) {
    State& state = *mState;
    const AVFrame* first = state.pending = state.decoder.next();
    const std::string& complaint = state.decoder.complaint();
    if (!first)
        throw MediaError(complaint + "no picture of its video can be decoded");
    if (first->width < 2 || first->height < 2)
        throw MediaError(complaint + "its picture is too small");
    state.width = first->width;
    state.height = first->height;
    state.wideColour = media::isWideColour(*first);
    state.pixelAspect = pixelAspectOf(state.decoder.container(), state.decoder.stream(), *first);
    if (const auto place = state.times.begin(*first)) {
        state.decoder.seekBefore(*place);
        state.pending = nullptr;
    }
}

VideoReader::~VideoReader() = default;
VideoReader::VideoReader(VideoReader&&) noexcept = default;
VideoReader& VideoReader::operator=(VideoReader&&) noexcept = default;

int VideoReader::width() const {
    return mState->width & ~1;
}

int VideoReader::height() const {
    return mState->height & ~1;
}

bool VideoReader::isTrimmed() const {
    return width() != mState->width || height() != mState->height;
}

FrameRate VideoReader::frameRate() const {
    return frameRateOf(mState->decoder.stream());
}

std::int64_t VideoReader::expectedFrames() const {
    const std::int64_t all =
        expectedFramesOf(mState->decoder.container(), mState->decoder.stream());
    return mState->times.framesWithin(all);
}

int VideoReader::rotationDegrees() const {
    return rotationDegreesOf(mState->decoder.stream());
}

bool VideoReader::hasAudio() const {
    return media::hasAudio(mState->decoder.container());
}

double VideoReader::pixelAspect() const {
    return mState->pixelAspect;
}

bool VideoReader::isWideColour() const {
    return mState->wideColour;
}

/// The next picture that is asked for; null at the end.
const AVFrame* VideoReader::State::nextWithinTimes() {
    for (;;) {
        const AVFrame* picture = pending ? std::exchange(pending, nullptr) : decoder.next();
        if (!picture) {
            ended = true;
            return nullptr;
        }
        switch (times.place(*picture)) {
            case FrameTimes::Place::Before:
                decoder.forgetDamage();
                break;
            case FrameTimes::Place::Within:
                return picture;
            case FrameTimes::Place::After:
                return nullptr;
        }
    }
}

bool VideoReader::read(std::vector<std::uint8_t>& i420) {
    State& state = *mState;
    if (state.times.isOver())
        return false;
    const AVFrame* picture = state.nextWithinTimes();
    if (!picture)
        return false;
    const std::string& complaint = state.decoder.complaint();
    if (picture->width != state.width || picture->height != state.height)
        throw MediaError(complaint + "its picture size changes half-way");
    try {
        const bool mapped = media::isWideColour(*picture) || hasOtherMatrix(*picture);
        state.packer.pack(mapped ? state.toneMapper.map(*picture) : *picture, i420);
    } catch (const MediaError& error) {
        throw MediaError(complaint + error.what());
    }
    ++state.read;
    return true;
}

void VideoReader::interrupt() {
    mState->isInterrupted = true;
}

Completeness VideoReader::completeness() const {
    const State& state = *mState;
    const std::int64_t left = state.ended ? state.decoder.picturesLeft(state.times.end()) : 0;
    return {state.read, state.read + state.decoder.lostPictures() + left,
            state.decoder.damagedPictures()};
}

std::optional<RateRange> VideoReader::variableRate() const {
    return mState->times.variableRate();
}

std::optional<std::chrono::microseconds> parseTime(const std::string& text) {
    std::int64_t microseconds = 0;
    if (av_parse_time(&microseconds, text.c_str(), 1) < 0)
        return std::nullopt;
    return std::chrono::microseconds(microseconds);
}

}  // namespace orbitwalk::media
