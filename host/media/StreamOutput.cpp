#include "media/StreamOutput.h"

#include <cerrno>
#include <new>

#include "media/AvSupport.h"
#include "media/MediaTypes.h"

namespace orbitwalk::media {

namespace {

constexpr int kBufferBytes = 64 * 1024;

/// The reason of a failed stdio call as a libav result.
int lastError() {
    return AVERROR(errno != 0 ? errno : EIO);
}

}  // namespace

StreamOutput::StreamOutput(std::FILE* stream, bool seekable) : mStream(stream) {
    if (!stream)
        throw MediaError("cannot write the video: no stream");
    if (seekable) {
        mStart = ftello(stream);
        if (mStart < 0)
            throw MediaError("cannot write the video: " + avErrorText(lastError()));
    }
    auto* buffer = static_cast<unsigned char*>(av_malloc(kBufferBytes));
    mIo = avio_alloc_context(buffer, kBufferBytes, 1, this, nullptr, writeBytes,
                             seekable ? seekTo : nullptr);
    if (!buffer || !mIo) {
        av_free(buffer);
        avio_context_free(&mIo);
        throw std::bad_alloc();
    }
}

StreamOutput::~StreamOutput() {
    av_freep(&mIo->buffer);
    avio_context_free(&mIo);
}

void StreamOutput::flush() {
    avio_flush(mIo);
    if (mIo->error == 0 && std::fflush(mStream) != 0)
        mIo->error = lastError();
    if (mIo->error < 0)
        throw MediaError("cannot write the video: " + avErrorText(mIo->error));
}

int StreamOutput::writeBytes(void* self, std::uint8_t* bytes, int size) {
    std::FILE* stream = static_cast<StreamOutput*>(self)->mStream;
    errno = 0;
    const auto written = std::fwrite(bytes, 1, static_cast<std::size_t>(size), stream);
    return written == static_cast<std::size_t>(size) ? size : lastError();
}

std::int64_t StreamOutput::seekTo(void* self, std::int64_t offset, int whence) {
    const auto* output = static_cast<StreamOutput*>(self);
    if (whence != SEEK_SET)
        return AVERROR(ENOSYS);
    if (fseeko(output->mStream, output->mStart + offset, SEEK_SET) != 0)
        return lastError();
    return offset;
}

}  // namespace orbitwalk::media
