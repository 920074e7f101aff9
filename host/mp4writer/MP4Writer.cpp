#include <MP4Writer.h>
#include <android/log.h>

#include "Recorder.h"

using orbitwalk::media::EncoderSettings;
using orbitwalk::mp4writer::Recorder;

namespace {

constexpr int kSuccess = 1;
constexpr int kFailure = 0;

/// One thread encodes in the call itself: nothing is held back, the memory is small, and the bytes
/// do not depend on the machine's number of cores.
constexpr int kThreads = 1;

int resultOf(bool good) {
    return good ? kSuccess : kFailure;
}

int refuse(const char* setting, int value) {
    __android_log_print(ANDROID_LOG_ERROR, "ORBITWALK_MP4_WRITER", "cannot record with %s %d",
                        setting, value);
    return kFailure;
}

}  // namespace

int InitMP4Engine(const char* /*fileName*/, const char* /*tempDir*/, int width, int height,
                  int rotation, int bitRate, int keyInterval, int frameRate, int speed, int fileId,
                  FILE* file) {
    __android_log_print(ANDROID_LOG_INFO, "ORBITWALK_MP4_WRITER", "file id %d", fileId);
    if (rotation != 0)
        return refuse("rotation", rotation);
    // To the encoder a rate of 0 means constant quality, which is not on offer here.
    if (bitRate <= 0)
        return refuse("bit rate", bitRate);
    EncoderSettings settings;
    settings.width = width;
    settings.height = height;
    settings.frameRate = {frameRate, 1};
    settings.bitRate = bitRate;
    settings.keyFrameInterval = keyInterval;
    settings.speed = speed;
    settings.threads = kThreads;
    settings.fragmented = true;
    return resultOf(Recorder::instance().begin(file, settings));
}

int EncodeFrame(const unsigned char* frame) {
    return resultOf(Recorder::instance().encode(frame));
}

int DeInitMP4Engine(void) {
    return resultOf(Recorder::instance().end());
}

int WaitMP4EngineFrames(int frames, int timeoutMs) {
    return Recorder::instance().waitForFrames(frames, timeoutMs);
}
