#include <MP4Writer.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <media/NdkMediaMuxer.h>

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "CameraImage.h"

const char* AMEDIAFORMAT_KEY_BIT_RATE = "bitrate";
const char* AMEDIAFORMAT_KEY_COLOR_FORMAT = "color-format";
const char* AMEDIAFORMAT_KEY_FRAME_RATE = "frame-rate";
const char* AMEDIAFORMAT_KEY_HEIGHT = "height";
const char* AMEDIAFORMAT_KEY_I_FRAME_INTERVAL = "i-frame-interval";
const char* AMEDIAFORMAT_KEY_MIME = "mime";
const char* AMEDIAFORMAT_KEY_SLICE_HEIGHT = "slice-height";
const char* AMEDIAFORMAT_KEY_STRIDE = "stride";
const char* AMEDIAFORMAT_KEY_WIDTH = "width";

struct AMediaFormat {
    std::map<std::string, double> numbers;
};
struct AMediaCodec {
    AMediaFormat configured;
};
struct AMediaMuxer {};

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using Bytes = std::vector<std::uint8_t>;

/// A device's encoder and muxer, as the NDK documents their order of calls: the encoder has two
/// input buffers, each busy until the output that it leads to is fetched; the first output is its
/// format, the second its configuration, which is no sample.
struct Device {
    int colorFormat = 19;  ///< The one that it takes.
    int stride = 0, sliceHeight = 0;
    int failingSample = -1;

    int living = 0;  ///< Codecs, formats, muxers.
    double keyInterval = 0;
    Bytes buffers[2];
    std::deque<std::size_t> freeInputs;
    std::deque<AMediaCodecBufferInfo> outputs;
    std::vector<Bytes> inputs;
    std::vector<std::string> file;  ///< What the muxer was told, in order.
    bool isFormatSaid = false;
} device;

AMediaFormat* newFormat(std::map<std::string, double> numbers = {}) {
    ++device.living;
    return new AMediaFormat{std::move(numbers)};
}
template <typename Object>
media_status_t destroy(Object* object) {
    --device.living;
    delete object;
    return AMEDIA_OK;
}
media_status_t write(std::string what) {
    device.file.push_back(std::move(what));
    return AMEDIA_OK;
}

}  // namespace

AMediaFormat* AMediaFormat_new() {
    return newFormat();
}
media_status_t AMediaFormat_delete(AMediaFormat* format) {
    return destroy(format);
}
bool AMediaFormat_getInt32(AMediaFormat* format, const char* name, int32_t* out) {
    const auto found = format->numbers.find(name);
    if (found == format->numbers.end())
        return false;
    *out = static_cast<int32_t>(found->second);
    return true;
}
void AMediaFormat_setInt32(AMediaFormat* f, const char* name, int32_t v) {
    f->numbers[name] = v;
}
void AMediaFormat_setFloat(AMediaFormat* f, const char* name, float v) {
    f->numbers[name] = static_cast<double>(v);
}
void AMediaFormat_setString(AMediaFormat*, const char*, const char*) {}

AMediaCodec* AMediaCodec_createEncoderByType(const char*) {
    ++device.living;
    return new AMediaCodec;
}
media_status_t AMediaCodec_delete(AMediaCodec* codec) {
    return destroy(codec);
}
media_status_t AMediaCodec_configure(AMediaCodec* codec, const AMediaFormat* format, ANativeWindow*,
                                     AMediaCrypto*, uint32_t flags) {
    codec->configured = *format;
    device.keyInterval = codec->configured.numbers["i-frame-interval"];
    return codec->configured.numbers["color-format"] == device.colorFormat && flags == 1
               ? AMEDIA_OK
               : AMEDIA_ERROR_UNKNOWN;
}
media_status_t AMediaCodec_start(AMediaCodec* codec) {
    auto& numbers = codec->configured.numbers;
    if (device.stride != 0)
        numbers.insert({{"stride", device.stride}, {"slice-height", device.sliceHeight}});
    const double rows = device.stride != 0 ? device.sliceHeight : numbers["height"];
    const double row = device.stride != 0 ? device.stride : numbers["width"];
    for (Bytes& buffer : device.buffers)
        buffer.assign(static_cast<std::size_t>(row * rows * 3 / 2), 0);
    device.freeInputs = {0, 1};
    device.outputs.push_back({0, 1, 0, AMEDIACODEC_BUFFER_FLAG_CODEC_CONFIG});
    return AMEDIA_OK;
}
AMediaFormat* AMediaCodec_getInputFormat(AMediaCodec* c) {
    return newFormat(c->configured.numbers);
}
AMediaFormat* AMediaCodec_getOutputFormat(AMediaCodec*) {
    return newFormat();
}
ssize_t AMediaCodec_dequeueInputBuffer(AMediaCodec*, int64_t) {
    if (device.freeInputs.empty())
        return AMEDIACODEC_INFO_TRY_AGAIN_LATER;
    const auto index = static_cast<ssize_t>(device.freeInputs.front());
    device.freeInputs.pop_front();
    return index;
}
uint8_t* AMediaCodec_getInputBuffer(AMediaCodec*, size_t index, size_t* size) {
    *size = device.buffers[index].size();
    return device.buffers[index].data();
}
media_status_t AMediaCodec_queueInputBuffer(AMediaCodec*, size_t index, off_t, size_t size,
                                            uint64_t timeUs, uint32_t flags) {
    if (size > 0)
        device.inputs.push_back(device.buffers[index]);
    device.freeInputs.push_back(index);
    device.outputs.push_back({0, static_cast<int32_t>(size), static_cast<int64_t>(timeUs), flags});
    return AMEDIA_OK;
}
ssize_t AMediaCodec_dequeueOutputBuffer(AMediaCodec*, AMediaCodecBufferInfo* info,
                                        int64_t timeout) {
    // One frame stays inside unless somebody waits.
    if (device.outputs.size() < 2 && timeout == 0)
        return AMEDIACODEC_INFO_TRY_AGAIN_LATER;
    if (!std::exchange(device.isFormatSaid, true))
        return AMEDIACODEC_INFO_OUTPUT_FORMAT_CHANGED;
    *info = device.outputs.front();
    device.outputs.pop_front();
    return 0;
}
uint8_t* AMediaCodec_getOutputBuffer(AMediaCodec*, size_t, size_t*) {
    return device.buffers[0].data();
}
media_status_t AMediaCodec_releaseOutputBuffer(AMediaCodec*, size_t, bool) {
    return AMEDIA_OK;
}

AMediaMuxer* AMediaMuxer_new(int, OutputFormat) {
    ++device.living;
    return new AMediaMuxer;
}
media_status_t AMediaMuxer_delete(AMediaMuxer* muxer) {
    return destroy(muxer);
}
ssize_t AMediaMuxer_addTrack(AMediaMuxer*, const AMediaFormat*) {
    write("track");
    return 0;
}
media_status_t AMediaMuxer_start(AMediaMuxer*) {
    return write("start");
}
media_status_t AMediaMuxer_stop(AMediaMuxer*) {
    return write("stop");
}
media_status_t AMediaMuxer_writeSampleData(AMediaMuxer*, size_t, const uint8_t*,
                                           const AMediaCodecBufferInfo* info) {
    if (device.failingSample-- == 0)
        return AMEDIA_ERROR_UNKNOWN;
    return write(std::to_string(info->presentationTimeUs));
}
extern "C" int __android_log_print(int, const char*, const char*, ...) {
    return 1;
}

namespace {

constexpr int kWidth = 4, kHeight = 2;
/// Luma 1 to 8, U 9 and 10, V 11 and 12.
const Bytes kFrame = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};

class AndroidWriter : public testing::Test {
  protected:
    AndroidWriter() { device = Device{}; }
    ~AndroidWriter() override {
        DeInitMP4Engine();
        std::fclose(mFile);
        EXPECT_EQ(device.living, 0);
    }
    int init() {
        return InitMP4Engine(nullptr, "", kWidth, kHeight, 0, 16777216, 15, 30, 7, 0, mFile);
    }
    std::FILE* mFile = std::tmpfile();
};

TEST_F(AndroidWriter, LaysTheFrameOutAsTheEncoderWants) {
    const struct {
        const char* name;
        int colorFormat, stride, sliceHeight;
        Bytes expected;
    } layouts[] = {
        {"planar", 19, 0, 0, kFrame},
        {"semi-planar", 21, 0, 0, {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 10, 12}},
        {"planar, padded", 19, 8, 4, {1, 2,  3, 4, 0, 0, 0, 0, 5,  6,  7, 8, 0, 0, 0, 0,
                                      0, 0,  0, 0, 0, 0, 0, 0, 0,  0,  0, 0, 0, 0, 0, 0,
                                      9, 10, 0, 0, 0, 0, 0, 0, 11, 12, 0, 0, 0, 0, 0, 0}},
        {"semi-planar, padded",
         21,
         6,
         2,
         {1, 2, 3, 4, 0, 0, 5, 6, 7, 8, 0, 0, 9, 11, 10, 12, 0, 0}},
    };
    for (const auto& layout : layouts) {
        SCOPED_TRACE(layout.name);
        device = Device{};
        device.colorFormat = layout.colorFormat;
        device.stride = layout.stride;
        device.sliceHeight = layout.sliceHeight;
        ASSERT_EQ(init(), 1);
        EXPECT_EQ(device.keyInterval, 0.5) << "seconds: 15 of 30 frames";
        EXPECT_EQ(EncodeFrame(kFrame.data()), 1);
        ASSERT_EQ(device.inputs.size(), 1U);
        EXPECT_THAT(device.inputs[0], ElementsAreArray(layout.expected));
        EXPECT_EQ(DeInitMP4Engine(), 1);
    }
}

TEST_F(AndroidWriter, WritesEveryFrameAtItsTimeBetweenStartAndStop) {
    ASSERT_EQ(init(), 1);
    EXPECT_EQ(init(), 0) << "one recording at a time";
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(EncodeFrame(kFrame.data()), 1);
    EXPECT_EQ(DeInitMP4Engine(), 1);
    EXPECT_THAT(device.file,
                ElementsAre("track", "start", "0", "33333", "66666", "100000", "stop"));
    EXPECT_EQ(EncodeFrame(kFrame.data()), 0);
    EXPECT_EQ(DeInitMP4Engine(), 0);
}

TEST_F(AndroidWriter, FailsAfterAFailedWriteAndBeginsAnew) {
    device.failingSample = 1;
    ASSERT_EQ(init(), 1);
    int good = 0;
    for (int i = 0; i < 5; ++i)
        good += EncodeFrame(kFrame.data());
    EXPECT_EQ(good, 2) << "the encoder holds one frame back: the third call writes the second";
    EXPECT_EQ(DeInitMP4Engine(), 0);
    device = Device{};
    EXPECT_EQ(init(), 1);
    device.colorFormat = 0;
    DeInitMP4Engine();
    EXPECT_EQ(init(), 0) << "no encoder takes it";
}

TEST(CameraImage, IsPackedFromPlanesOfEitherKind) {
    const Bytes luma = {1, 2, 3, 4, 0, 0, 5, 6, 7, 8};
    const Bytes u = {9, 10}, v = {11, 12}, alternating = {9, 11, 10, 12};
    const ImagePlane y{luma.data(), luma.size(), 6, 1};
    const auto packed = [&](const ImagePlane& uPlane, const ImagePlane& vPlane) {
        Bytes frame(kFrame.size());
        return packI420(y, uPlane, vPlane, kWidth, kHeight, frame.data()) ? frame : Bytes{};
    };
    EXPECT_EQ(packed({u.data(), 2, 2, 1}, {v.data(), 2, 2, 1}), kFrame);
    EXPECT_EQ(packed({&alternating[0], 4, 4, 2}, {&alternating[1], 3, 4, 2}), kFrame);
    EXPECT_EQ(packed({&alternating[0], 4, 4, 2}, {&alternating[1], 2, 4, 2}), Bytes{})
        << "too short";
    EXPECT_EQ(packed({nullptr, 0, 2, 1}, {v.data(), 2, 2, 1}), Bytes{}) << "no direct buffer";
}

}  // namespace
