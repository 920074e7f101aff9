#include "media/VideoReader.h"

#include <string>

#include "media/I420Packer.h"
#include "media/StreamFacts.h"
#include "media/VideoDecoder.h"

namespace orbitwalk::media {

struct VideoReader::State {
    explicit State(const std::filesystem::path& file) : decoder(file) {}

    VideoDecoder decoder;
    I420Packer packer;
    const AVFrame* pending = nullptr;  ///< The first picture, until it was read.
    int width = 0;                     ///< As coded, perhaps odd.
    int height = 0;
};

VideoReader::VideoReader(const std::filesystem::path& file)
    : mState(std::make_unique<State>(file)) {
    const AVFrame* first = mState->pending = mState->decoder.next();
    const std::string& complaint = mState->decoder.complaint();
    if (!first)
        throw MediaError(complaint + "no picture of its video can be decoded");
    if (first->width < 2 || first->height < 2)
        throw MediaError(complaint + "its picture is too small");
    mState->width = first->width;
    mState->height = first->height;
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
    return expectedFramesOf(mState->decoder.container(), mState->decoder.stream());
}

int VideoReader::rotationDegrees() const {
    return rotationDegreesOf(mState->decoder.stream());
}

bool VideoReader::read(std::vector<std::uint8_t>& i420) {
    State& state = *mState;
    const AVFrame* picture = state.pending ? state.pending : state.decoder.next();
    state.pending = nullptr;
    if (!picture)
        return false;
    const std::string& complaint = state.decoder.complaint();
    if (picture->width != state.width || picture->height != state.height)
        throw MediaError(complaint + "its picture size changes half-way");
    try {
        state.packer.pack(*picture, i420);
    } catch (const MediaError& error) {
        throw MediaError(complaint + error.what());
    }
    return true;
}

}  // namespace orbitwalk::media
