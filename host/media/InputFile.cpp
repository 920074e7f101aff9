#include "media/InputFile.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <string>
#include <utility>

namespace orbitwalk::media {

namespace {

constexpr int kPollMilliseconds = 100;

bool isFileOrMissing(const std::filesystem::path& file) {
    struct stat facts {};
    return stat(file.c_str(), &facts) != 0 || S_ISREG(facts.st_mode);
}

int askInterrupted(void* interrupted) {
    const auto& ask = *static_cast<const Interrupted*>(interrupted);
    return ask && ask() ? 1 : 0;
}

}  // namespace

InputFile::~InputFile() {
    mContainer.reset();
    if (mPipe >= 0)
        close(mPipe);
}

int InputFile::open(const std::filesystem::path& file, Interrupted interrupted) {
    mInterrupted = std::move(interrupted);
    // The protocol is named, so that a colon in the file's name is not taken for one.
    std::string url = "file:" + file.string();
    if (!isFileOrMissing(file)) {
        if (const int result = openPipe(file); result < 0)
            return result;
        url = "pipe:" + std::to_string(mPipe);
    }
    AVFormatContext* container = avformat_alloc_context();
    if (!container)
        throw std::bad_alloc();
    container->interrupt_callback = {&askInterrupted, &mInterrupted};
    if (const int result = avformat_open_input(&container, url.c_str(), nullptr, nullptr);
        result < 0)
        return result;
    mContainer.reset(container);
    return avformat_find_stream_info(container, nullptr);
}

/// Opens what is no file and waits for its first bytes: until a pipe has a writer, reading it would
/// give its end.
int InputFile::openPipe(const std::filesystem::path& file) {
    mPipe = ::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (mPipe < 0)
        return AVERROR(errno);
    for (;;) {
        if (askInterrupted(&mInterrupted))
            return AVERROR_EXIT;
        pollfd waiting{mPipe, POLLIN, 0};
        const int ready = poll(&waiting, 1, kPollMilliseconds);
        if (ready > 0)
            return 0;
        if (ready < 0 && errno != EINTR)
            return AVERROR(errno);
    }
}

}  // namespace orbitwalk::media
