#include "Recorder.h"

#include <android/log.h>

#include <exception>

namespace orbitwalk::mp4writer {

namespace {

constexpr char kLogTag[] = "ORBITWALK_MP4_WRITER";

}  // namespace

Recorder& Recorder::instance() {
    static Recorder& recorder = *new Recorder;
    return recorder;
}

bool Recorder::begin(std::FILE* file, const media::EncoderSettings& settings) {
    const std::lock_guard guard(mLock);
    if (mWriter) {
        __android_log_print(ANDROID_LOG_ERROR, kLogTag, "a recording is already open");
        return false;
    }
    mReturned.reset();
    mFailed = mFailureSaid = false;
    try {
        mWriter = std::make_unique<media::VideoWriter>(file, settings);
    } catch (const std::exception& error) {
        sayOnce(error.what());
        return false;
    }
    mFrameBytes = std::size_t(settings.width) * std::size_t(settings.height) * 3 / 2;
    __android_log_print(ANDROID_LOG_INFO, kLogTag, "recording %dx%d at %d frames/s, %lld bit/s",
                        settings.width, settings.height, settings.frameRate.numerator,
                        static_cast<long long>(settings.bitRate));
    return true;
}

bool Recorder::encode(const std::uint8_t* frame) {
    bool encoded = false;
    {
        const std::lock_guard guard(mLock);
        encoded = encodeOne(frame);
    }
    mReturned.increment();
    return encoded;
}

bool Recorder::encodeOne(const std::uint8_t* frame) {
    if (!mWriter) {
        sayOnce("no recording is open, frames are refused");
        return false;
    }
    if (!frame) {
        __android_log_print(ANDROID_LOG_ERROR, kLogTag, "a null frame is refused");
        return false;
    }
    try {
        mWriter->write({frame, mFrameBytes});
        return true;
    } catch (const std::exception& error) {
        mFailed = true;
        sayOnce(error.what());
        return false;
    }
}

bool Recorder::end() {
    const std::lock_guard guard(mLock);
    if (!mWriter) {
        __android_log_print(ANDROID_LOG_ERROR, kLogTag, "no recording is open to be ended");
        return false;
    }
    const auto writer = std::move(mWriter);
    bool complete = !mFailed;
    try {
        writer->finish();
        __android_log_print(ANDROID_LOG_INFO, kLogTag, "recording ended");
    } catch (const std::exception& error) {
        complete = false;
        sayOnce(error.what());
    }
    mFailed = mFailureSaid = false;
    return complete;
}

/// One line for a failure, however many frames come after it.
void Recorder::sayOnce(const char* reason) {
    if (!mFailureSaid)
        __android_log_print(ANDROID_LOG_ERROR, kLogTag, "%s", reason);
    mFailureSaid = true;
}

}  // namespace orbitwalk::mp4writer
