/// @file
/// The MP4 writer's calls over the NDK's encoder and muxer (API 28), for a device whose platform
/// brings no writer. H.264 of the device: other devices give other bytes. The engine calls from one
/// thread at a time; there is one recording a process.
///
/// The muxer writes to the stream's descriptor, from its beginning, and needs it seekable, readable
/// and empty. The file plays when DeInitMP4Engine has returned 1, not before.

#include <MP4Writer.h>
#include <android/log.h>
#include <media/NdkMediaCodec.h>
#include <media/NdkMediaFormat.h>
#include <media/NdkMediaMuxer.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

namespace {

// MediaCodecInfo.CodecCapabilities in Java; the NDK does not name them.
constexpr int kPlanar = 19;      ///< Y, then U, then V.
constexpr int kSemiPlanar = 21;  ///< Y, then U and V in turn.

constexpr std::int64_t kPollUs = 10'000;
/// An encoder that gives and takes nothing for so long is stuck.
constexpr std::chrono::seconds kPatience{5};

bool fail(const char* what) {
    __android_log_print(ANDROID_LOG_ERROR, "ORBITWALK_MP4_WRITER", "%s", what);
    return false;
}

struct Settings {
    int width, height, bitRate, keyInterval, frameRate;
};

/// Where the encoder wants the planes of an input buffer.
struct InputLayout {
    int width, height;
    int colorFormat;
    int stride;       ///< Bytes from a luma row to the next.
    int sliceHeight;  ///< Luma rows before the chroma.

    std::size_t size() const {
        return static_cast<std::size_t>(stride) * static_cast<std::size_t>(sliceHeight) * 3 / 2;
    }
    void fill(std::uint8_t* out, const std::uint8_t* frame) const;
};

void InputLayout::fill(std::uint8_t* out, const std::uint8_t* frame) const {
    for (int row = 0; row < height; ++row, frame += width)
        std::memcpy(out + std::ptrdiff_t{row} * stride, frame, static_cast<std::size_t>(width));
    std::uint8_t* chroma = out + std::ptrdiff_t{sliceHeight} * stride;
    const int halfWidth = width / 2, halfHeight = height / 2;
    const std::uint8_t* planes[] = {frame, frame + std::ptrdiff_t{halfWidth} * halfHeight};
    for (int plane = 0; plane < 2; ++plane) {
        const bool alternate = colorFormat == kSemiPlanar;
        const int rowStride = alternate ? stride : stride / 2;
        std::uint8_t* to =
            chroma + (alternate ? plane : std::ptrdiff_t{plane} * rowStride * (sliceHeight / 2));
        for (int row = 0; row < halfHeight; ++row)
            for (int x = 0; x < halfWidth; ++x)
                to[std::ptrdiff_t{row} * rowStride + (alternate ? 2 * x : x)] =
                    planes[plane][row * halfWidth + x];
    }
}

using Format = std::unique_ptr<AMediaFormat, media_status_t (*)(AMediaFormat*)>;
using Codec = std::unique_ptr<AMediaCodec, media_status_t (*)(AMediaCodec*)>;
using Muxer = std::unique_ptr<AMediaMuxer, media_status_t (*)(AMediaMuxer*)>;

/// A started encoder that takes this layout, or null.
Codec startEncoder(const Settings& settings, int colorFormat) {
    Codec codec(AMediaCodec_createEncoderByType("video/avc"), AMediaCodec_delete);
    const Format format(AMediaFormat_new(), AMediaFormat_delete);
    AMediaFormat_setString(format.get(), AMEDIAFORMAT_KEY_MIME, "video/avc");
    AMediaFormat_setInt32(format.get(), AMEDIAFORMAT_KEY_WIDTH, settings.width);
    AMediaFormat_setInt32(format.get(), AMEDIAFORMAT_KEY_HEIGHT, settings.height);
    AMediaFormat_setInt32(format.get(), AMEDIAFORMAT_KEY_BIT_RATE, settings.bitRate);
    AMediaFormat_setInt32(format.get(), AMEDIAFORMAT_KEY_FRAME_RATE, settings.frameRate);
    AMediaFormat_setInt32(format.get(), AMEDIAFORMAT_KEY_COLOR_FORMAT, colorFormat);
    // Seconds; as an integer, half a second would be 0, which makes each frame a key frame.
    AMediaFormat_setFloat(
        format.get(), AMEDIAFORMAT_KEY_I_FRAME_INTERVAL,
        static_cast<float>(settings.keyInterval) / static_cast<float>(settings.frameRate));
    if (codec != nullptr &&
        (AMediaCodec_configure(codec.get(), format.get(), nullptr, nullptr,
                               AMEDIACODEC_CONFIGURE_FLAG_ENCODE) != AMEDIA_OK ||
         AMediaCodec_start(codec.get()) != AMEDIA_OK))
        codec.reset();
    return codec;
}

class Recording {
  public:
    /// @return null when the device has no encoder for it or the stream takes no MP4.
    static std::unique_ptr<Recording> begin(const Settings& settings, std::FILE* file);

    bool encode(const std::uint8_t* frame);
    /// What was encoded is a complete file when this returns true.
    bool end();

  private:
    Recording(Codec codec, Muxer muxer, const Settings& settings, std::FILE* file);

    /// @return index of an input buffer, or -1 with the reason in the log.
    ssize_t inputBuffer();
    /// Writes what the encoder has ready, waiting for the first of it. @return whether it went
    /// well.
    bool drain(std::int64_t timeoutUs);
    bool beginFile();
    bool write(std::size_t index, AMediaCodecBufferInfo& info);

    Codec mCodec;
    Muxer mMuxer;
    InputLayout mLayout{};
    std::FILE* mFile;
    int mFrameRate;
    std::int64_t mFrames = 0;
    ssize_t mTrack = -1;  ///< Known, and the file begun, when the encoder has said its format.
    bool mIsAtEnd = false;
    bool mHasFailed = false;
};

std::unique_ptr<Recording> Recording::begin(const Settings& settings, std::FILE* file) {
    for (const int colorFormat : {kPlanar, kSemiPlanar}) {
        Codec codec = startEncoder(settings, colorFormat);
        if (codec == nullptr)
            continue;
        Muxer muxer(AMediaMuxer_new(fileno(file), AMEDIAMUXER_OUTPUT_FORMAT_MPEG_4),
                    AMediaMuxer_delete);
        if (muxer == nullptr) {
            fail("the stream takes no MP4");
            return nullptr;
        }
        std::unique_ptr<Recording> recording(
            new Recording(std::move(codec), std::move(muxer), settings, file));
        recording->mLayout.colorFormat = colorFormat;
        return recording;
    }
    fail("no encoder takes frames of this size");
    return nullptr;
}

Recording::Recording(Codec codec, Muxer muxer, const Settings& settings, std::FILE* file)
    : mCodec(std::move(codec)),
      mMuxer(std::move(muxer)),
      mFile(file),
      mFrameRate(settings.frameRate) {
    mLayout.width = mLayout.stride = settings.width;
    mLayout.height = mLayout.sliceHeight = settings.height;
    const Format input(AMediaCodec_getInputFormat(mCodec.get()), AMediaFormat_delete);
    std::int32_t value = 0;
    if (input != nullptr && AMediaFormat_getInt32(input.get(), AMEDIAFORMAT_KEY_STRIDE, &value))
        mLayout.stride = std::max(mLayout.width, value);
    if (input != nullptr &&
        AMediaFormat_getInt32(input.get(), AMEDIAFORMAT_KEY_SLICE_HEIGHT, &value))
        mLayout.sliceHeight = std::max(mLayout.height, value);
}

ssize_t Recording::inputBuffer() {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!mHasFailed && std::chrono::steady_clock::now() < end) {
        const ssize_t index = AMediaCodec_dequeueInputBuffer(mCodec.get(), kPollUs);
        if (index >= 0)
            return index;
        // A full encoder takes no more until its output is fetched.
        mHasFailed = index != AMEDIACODEC_INFO_TRY_AGAIN_LATER || !drain(0);
    }
    mHasFailed = true;
    fail("the encoder takes no frame");
    return -1;
}

bool Recording::encode(const std::uint8_t* frame) {
    const ssize_t index = inputBuffer();
    if (index < 0)
        return false;
    std::size_t capacity = 0;
    std::uint8_t* buffer =
        AMediaCodec_getInputBuffer(mCodec.get(), static_cast<std::size_t>(index), &capacity);
    mHasFailed = buffer == nullptr || capacity < mLayout.size();
    if (mHasFailed)
        return fail("the encoder's buffer is too small for a frame");
    mLayout.fill(buffer, frame);
    const auto time = static_cast<std::uint64_t>(mFrames++ * 1'000'000 / mFrameRate);
    mHasFailed = AMediaCodec_queueInputBuffer(mCodec.get(), static_cast<std::size_t>(index), 0,
                                              mLayout.size(), time, 0) != AMEDIA_OK ||
                 !drain(0);
    return !mHasFailed || fail("a frame could not be encoded or written");
}

bool Recording::end() {
    const ssize_t index = inputBuffer();
    if (index < 0)
        return false;
    const auto time = static_cast<std::uint64_t>(mFrames * 1'000'000 / mFrameRate);
    bool good =
        AMediaCodec_queueInputBuffer(mCodec.get(), static_cast<std::size_t>(index), 0, 0, time,
                                     AMEDIACODEC_BUFFER_FLAG_END_OF_STREAM) == AMEDIA_OK;
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (good && !mIsAtEnd && std::chrono::steady_clock::now() < end)
        good = drain(kPollUs);
    good = good && mIsAtEnd && mTrack >= 0 && AMediaMuxer_stop(mMuxer.get()) == AMEDIA_OK &&
           std::fseek(mFile, 0, SEEK_END) == 0;
    return good || fail("the recording could not be ended");
}

bool Recording::drain(std::int64_t timeoutUs) {
    while (!mIsAtEnd) {
        AMediaCodecBufferInfo info{};
        const ssize_t index = AMediaCodec_dequeueOutputBuffer(mCodec.get(), &info, timeoutUs);
        if (index == AMEDIACODEC_INFO_TRY_AGAIN_LATER)
            return true;
        if (index == AMEDIACODEC_INFO_OUTPUT_BUFFERS_CHANGED)
            continue;
        const bool good = index == AMEDIACODEC_INFO_OUTPUT_FORMAT_CHANGED ? beginFile()
                          : index >= 0 ? write(static_cast<std::size_t>(index), info)
                                       : false;
        if (!good)
            return false;
        timeoutUs = 0;
    }
    return true;
}

bool Recording::beginFile() {
    if (mTrack >= 0)
        return false;
    const Format format(AMediaCodec_getOutputFormat(mCodec.get()), AMediaFormat_delete);
    mTrack = AMediaMuxer_addTrack(mMuxer.get(), format.get());
    return mTrack >= 0 && AMediaMuxer_start(mMuxer.get()) == AMEDIA_OK;
}

bool Recording::write(std::size_t index, AMediaCodecBufferInfo& info) {
    std::size_t size = 0;
    const std::uint8_t* bytes = AMediaCodec_getOutputBuffer(mCodec.get(), index, &size);
    bool good = bytes != nullptr;
    // The encoder's configuration stands in the track's format already.
    if (good && info.size > 0 && (info.flags & AMEDIACODEC_BUFFER_FLAG_CODEC_CONFIG) == 0)
        good = mTrack >= 0 &&
               AMediaMuxer_writeSampleData(mMuxer.get(), static_cast<std::size_t>(mTrack), bytes,
                                           &info) == AMEDIA_OK;
    mIsAtEnd = (info.flags & AMEDIACODEC_BUFFER_FLAG_END_OF_STREAM) != 0;
    return AMediaCodec_releaseOutputBuffer(mCodec.get(), index, false) == AMEDIA_OK && good;
}

std::unique_ptr<Recording> recording;

}  // namespace

int InitMP4Engine(const char*, const char*, int width, int height, int rotation, int bitRate,
                  int keyInterval, int frameRate, int, int, FILE* file) {
    if (recording != nullptr || rotation != 0 || width < 2 || height < 2 || width % 2 != 0 ||
        height % 2 != 0 || bitRate < 1000 || keyInterval < 1 || frameRate < 1 || file == nullptr)
        return fail("these settings are not recorded");
    recording = Recording::begin({width, height, bitRate, keyInterval, frameRate}, file);
    return recording != nullptr;
}

int EncodeFrame(const unsigned char* frame) {
    return recording != nullptr && frame != nullptr && recording->encode(frame);
}

int DeInitMP4Engine(void) {
    const std::unique_ptr<Recording> ending = std::move(recording);
    return ending != nullptr && ending->end();
}
