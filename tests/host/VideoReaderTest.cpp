#include "media/VideoReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <numeric>
#include <thread>

#include "Clips.h"
#include "media/AvSupport.h"
#include "media/ToneMapper.h"
#include "support/Complaint.h"
#include "support/TestDirectory.h"
#include "support/VideoFile.h"

namespace {

using namespace orbitwalk::media;
using clips::Frame;
using test_support::complaintOf;
using test_support::TestDirectory;
using testing::ElementsAreArray;
using testing::HasSubstr;

/// A Y4M file of one picture: a text header and the planes as they are.
std::string y4m(const std::string& parameters, const Frame& planes) {
    return "YUV4MPEG2 " + parameters + "\nFRAME\n" + std::string(planes.begin(), planes.end());
}

TEST(VideoReader, CutsOffAnOddLastColumnAndRow) {
    const TestDirectory dir;
    // 5 x 3 luma, 3 x 2 chroma.
    test_support::writeFile(
        dir / "odd.y4m",
        y4m("W5 H3 F25:1 C420jpeg", {16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29,
                                     30, 91, 92, 93, 94, 95, 96, 71, 72, 73, 74, 75, 76}));
    VideoReader reader(dir / "odd.y4m");
    EXPECT_EQ(reader.width(), 4);
    EXPECT_EQ(reader.height(), 2);
    EXPECT_EQ(reader.frameRate().numerator, 25);
    Frame frame;
    ASSERT_TRUE(reader.read(frame));
    EXPECT_THAT(frame, ElementsAreArray({16, 17, 18, 19, 21, 22, 23, 24, 91, 92, 71, 72}));
    EXPECT_FALSE(reader.read(frame));
}

TEST(VideoReader, ConvertsOtherFormatsToVideoRangeI420) {
    const Frame uniform444 = [] {
        Frame planes(16 * 16 * 3, 200);
        std::fill_n(planes.begin(), 16 * 16, std::uint8_t{100});
        return planes;
    }();
    Frame fullRange(16 * 16 * 3 / 2, 128);
    std::fill_n(fullRange.begin(), 16 * 8, std::uint8_t{0});
    std::fill_n(fullRange.begin() + 16 * 8, 16 * 8, std::uint8_t{255});
    const struct {
        const char* name;
        std::string bytes;
        int firstLuma, lastLuma, chroma;
    } cases[] = {
        {"444.y4m", y4m("W16 H16 F25:1 C444", uniform444), 100, 100, 200},
        // Black 0 and white 255 become 16 and 235.
        {"full.y4m", y4m("W16 H16 F25:1 C420jpeg XCOLORRANGE=FULL", fullRange), 16, 235, 128},
    };
    const TestDirectory dir;
    for (const auto& c : cases) {
        test_support::writeFile(dir / c.name, c.bytes);
        const auto frames = test_support::readVideo(dir / c.name);
        ASSERT_EQ(frames.size(), 1u) << c.name;
        EXPECT_NEAR(frames[0].at(0), c.firstLuma, 1) << c.name;
        EXPECT_NEAR(frames[0].at(255), c.lastLuma, 1) << c.name;
        EXPECT_NEAR(frames[0].at(383), c.chroma, 1) << c.name;
    }
}

/// Writes frames of moving waves, 64 x 48.
void writeClip(const std::filesystem::path& file, int frames, bool fragmented = false) {
    EncoderSettings settings;
    settings.width = 64;
    settings.height = 48;
    settings.threads = 1;
    settings.fragmented = fragmented;
    test_support::writeVideo(file, settings, frames,
                             [](int i) { return clips::movingWaves(64, 48, i); });
}

/// Copies a clip's packets into another container, with other presentation times in the unit.
void retime(const std::filesystem::path& from, const std::filesystem::path& to, AVRational unit,
            const std::vector<int>& times) {
    AVFormatContext* source = nullptr;
    ASSERT_EQ(avformat_open_input(&source, from.c_str(), nullptr, nullptr), 0);
    const InputPtr input(source);
    ASSERT_GE(avformat_find_stream_info(source, nullptr), 0);
    AVFormatContext* target = nullptr;
    avformat_alloc_output_context2(&target, nullptr, nullptr, to.c_str());
    const OutputPtr output(target);
    ASSERT_EQ(avio_open(&target->pb, to.c_str(), AVIO_FLAG_WRITE), 0);
    AVStream* track = avformat_new_stream(target, nullptr);
    avcodec_parameters_copy(track->codecpar, source->streams[0]->codecpar);
    track->codecpar->codec_tag = 0;
    track->time_base = unit;
    ASSERT_GE(avformat_write_header(target, nullptr), 0);
    const auto packet = makePacket();
    for (const int time : times) {
        ASSERT_EQ(av_read_frame(source, packet.get()), 0);
        packet->pts = packet->dts = av_rescale_q(time, unit, track->time_base);
        packet->duration = 0;
        ASSERT_GE(av_write_frame(target, packet.get()), 0);
        av_packet_unref(packet.get());
    }
    av_write_trailer(target);
    avio_closep(&target->pb);
}

constexpr AVRational kMilliseconds{1, 1000};

std::vector<Frame> readAll(VideoReader& reader) {
    std::vector<Frame> frames;
    for (Frame frame; reader.read(frame);)
        frames.push_back(frame);
    return frames;
}

TEST(VideoReader, TakesFramesByTheirTimestampsWithoutDuplicatingOrDroppingAny) {
    using std::chrono::milliseconds;
    const TestDirectory dir;
    // Fragmented: no pictures out of order, so the order of the file is that of presentation.
    writeClip(dir / "even.mp4", 9, true);
    const auto frames = test_support::readVideo(dir / "even.mp4");
    retime(dir / "even.mp4", dir / "uneven.mkv", kMilliseconds,
           {100, 101, 102, 400, 433, 1000, 1001, 4100, 8100});
    const struct {
        milliseconds start;
        std::optional<milliseconds> duration;
        std::size_t first, count;
    } cases[] = {{milliseconds(0), {}, 0, 9},
                 {milliseconds(1), {}, 1, 8},
                 {milliseconds(300), milliseconds(600), 3, 2},
                 {milliseconds(334), milliseconds(567), 5, 1},
                 {milliseconds(6000), milliseconds(9000), 8, 1},
                 {milliseconds(8001), {}, 9, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.start.count());
        VideoReader reader(dir / "uneven.mkv", {.start = c.start, .duration = c.duration});
        const auto at = frames.begin() + static_cast<std::ptrdiff_t>(c.first);
        EXPECT_EQ(readAll(reader), std::vector(at, at + static_cast<std::ptrdiff_t>(c.count)));
        EXPECT_TRUE(reader.completeness().isComplete());
        EXPECT_EQ(reader.variableRate().has_value(), c.count > 2);
    }
    VideoReader reader(dir / "uneven.mkv");
    readAll(reader);
    EXPECT_NEAR(reader.variableRate()->slowest, 0.25, 0.001);
    EXPECT_NEAR(reader.variableRate()->fastest, 1000, 0.001);
}

TEST(VideoReader, TellsWhatACutOrDamagedFileLacks) {
    const TestDirectory dir;
    writeClip(dir / "whole.mp4", 30, true);
    std::vector<int> times(30);
    std::iota(times.begin(), times.end(), 0);
    retime(dir / "whole.mp4", dir / "whole.mkv", {1, 30}, times);
    retime(dir / "whole.mp4", dir / "none.h264", {1, 30}, times);
    retime(dir / "none.h264", dir / "count.avi", {1, 30}, times);
    // A recorder that writes the number of frames beforehand gets it wrong.
    std::string avi = test_support::contentOf(dir / "count.avi");
    const std::size_t length = avi.find("strh") + 8 + 32;
    ASSERT_EQ(avi.at(length), 30);
    avi[length] = 99;
    test_support::writeFile(dir / "count.avi", avi);
    for (const char* whole : {"whole.mp4", "whole.mkv", "count.avi", "none.h264"}) {
        VideoReader reader(dir / whole);
        EXPECT_EQ(readAll(reader).size(), 30u);
        EXPECT_TRUE(reader.completeness().isComplete()) << whole;
    }
    for (const char* cut : {"whole.mp4", "whole.mkv"}) {
        SCOPED_TRACE(cut);
        const std::string bytes = test_support::contentOf(dir / cut);
        test_support::writeFile(dir / cut, bytes.substr(0, bytes.size() / 2));
        VideoReader reader(dir / cut);
        const auto frames = readAll(reader);
        const Completeness found = reader.completeness();
        EXPECT_EQ(found.read, static_cast<std::int64_t>(frames.size()));
        EXPECT_LT(found.read, found.expected);
        EXPECT_FALSE(found.isComplete());
    }
    VideoReader reader(dir / "whole.mkv");
    readAll(reader);
    EXPECT_NEAR(static_cast<double>(reader.completeness().expected), 30, 1) << "by its duration";
}

TEST(VideoReader, WaitsForAPipeUntilItIsInterrupted) {
    const TestDirectory dir;
    ASSERT_EQ(mkfifo((dir / "pipe").c_str(), 0600), 0);
    int asked = 0;
    EXPECT_THROW(VideoReader(dir / "pipe", {.interrupted = [&] { return ++asked > 2; }}),
                 MediaError);
    std::thread writer(
        [&] { test_support::writeFile(dir / "pipe", y4m("W4 H2 F25:1 C420jpeg", Frame(12, 50))); });
    VideoReader reader(dir / "pipe");
    EXPECT_EQ(readAll(reader), std::vector<Frame>(1, Frame(12, 50)));
    writer.join();
}

/// A grey picture of 10 bits in BT.2020's primaries, one level from top to bottom.
FramePtr greyPicture(AVColorTransferCharacteristic transfer, int level) {
    FramePtr picture = makeFrame();
    picture->format = AV_PIX_FMT_YUV420P10;
    picture->width = picture->height = 32;
    picture->color_primaries = AVCOL_PRI_BT2020;
    picture->color_trc = transfer;
    picture->color_range = AVCOL_RANGE_MPEG;
    av_frame_get_buffer(picture.get(), 0);
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < (plane == 0 ? 32 : 16); ++y)
            std::fill_n(reinterpret_cast<std::uint16_t*>(picture->data[plane] +
                                                         y * picture->linesize[plane]),
                        plane == 0 ? 32 : 16, static_cast<std::uint16_t>(plane == 0 ? level : 512));
    return picture;
}

TEST(ToneMapper, KeepsGreyBlackAndThePeak) {
    const struct {
        AVColorTransferCharacteristic transfer;
        int level, luma;
    } cases[] = {// Grey is the same in both gamuts, and the curve of an ordinary video stays.
                 {AVCOL_TRC_BT709, 4 * 100, 100},   {AVCOL_TRC_BT2020_10, 4 * 200, 200},
                 {AVCOL_TRC_SMPTE2084, 64, 16},  // 1000 cd/m2.
                 {AVCOL_TRC_SMPTE2084, 723, 235},   {AVCOL_TRC_ARIB_STD_B67, 64, 16},
                 {AVCOL_TRC_ARIB_STD_B67, 940, 235}};
    for (const auto& c : cases) {
        const FramePtr picture = greyPicture(c.transfer, c.level);
        ASSERT_TRUE(isWideColour(*picture));
        ToneMapper mapper;
        const AVFrame& mapped = mapper.map(*picture);
        EXPECT_EQ(mapped.format, AV_PIX_FMT_YUV420P);
        EXPECT_NEAR(mapped.data[0][0], c.luma, 2) << c.transfer;
        EXPECT_NEAR(mapped.data[1][0], 128, 1) << c.transfer;
        EXPECT_NEAR(mapped.data[2][0], 128, 1) << c.transfer;
    }
}

TEST(VideoReader, TellsTheDisplayRotationClockwise) {
    const TestDirectory dir;
    writeClip(dir / "clip.mp4", 2);
    const std::string clip = test_support::contentOf(dir / "clip.mp4");
    constexpr std::size_t kMatrixAfterType = 40;
    const std::size_t matrix = clip.find("tkhd") + 4 + kMatrixAfterType;
    const std::string one{"\0\1\0\0", 4}, minusOne{"\xff\xff\0\0", 4}, zero(4, '\0');
    const struct {
        int degrees;
        std::string a, b, c, d;
    } cases[] = {{0, one, zero, zero, one},
                 {90, zero, one, minusOne, zero},
                 {180, minusOne, zero, zero, minusOne},
                 {270, zero, minusOne, one, zero}};
    for (const auto& c : cases) {
        std::string turned = clip;
        turned.replace(matrix, 20, c.a + c.b + zero + c.c + c.d);
        test_support::writeFile(dir / "turned.mp4", turned);
        const VideoReader reader(dir / "turned.mp4");
        EXPECT_EQ(reader.rotationDegrees(), c.degrees);
        EXPECT_EQ(reader.expectedFrames(), 2);
    }
}

TEST(VideoReader, SaysInOneLineWhichFileItCannotRead) {
    const std::string wav =
        std::string("RIFF\x34\0\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x40\x1f\0\0\x80\x3e\0\0\2\0\x10\0",
                    36) +
        std::string("data\x10\0\0\0", 8) + std::string(16, '\0');
    const auto ppm = [](int side) {
        const std::string size = std::to_string(side);
        return "P6\n" + size + " " + size + "\n255\n" +
               std::string(static_cast<std::size_t>(side * side * 3), 'x');
    };
    const TestDirectory dir;
    writeClip(dir / "clip.mp4", 10);
    const struct {
        const char* name;
        std::string bytes;
        const char* reason;
    } cases[] = {
        {"empty.mp4", "", "Invalid data"},
        {"garbage.mp4", std::string(5000, '\x5a'), "Invalid data"},
        {"index lost.mp4", test_support::contentOf(dir / "clip.mp4").substr(0, 500),
         "Invalid data"},
        {"song:take 1.wav", wav, "no video in it"},
        {"grows", ppm(8) + ppm(16), "its picture size changes half-way"},
    };
    for (const auto& c : cases) {
        const auto file = dir / c.name;
        test_support::writeFile(file, c.bytes);
        const auto complaint = complaintOf<MediaError>([&] { test_support::readVideo(file); });
        EXPECT_THAT(complaint, HasSubstr("cannot read " + file.string() + ": " + c.reason));
        EXPECT_EQ(complaint.find('\n'), std::string::npos);
    }
    EXPECT_EQ(complaintOf<MediaError>([&] { VideoReader(dir / "missing.mp4"); }),
              "cannot read " + (dir / "missing.mp4").string() + ": No such file or directory");
}

}  // namespace
