#include "Clips.h"

#include <cerrno>
#include <cmath>
#include <random>

#include "media/AvSupport.h"

namespace clips {

Frame movingWaves(int width, int height, int frame) {
    Frame i420;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            i420.push_back(static_cast<std::uint8_t>(128 + 60 * std::sin((x + 3 * frame) * 0.1) +
                                                     40 * std::cos(y * 0.15)));
    for (const int base : {100, 150})
        for (int i = 0; i < width / 2 * (height / 2); ++i)
            i420.push_back(static_cast<std::uint8_t>(base + frame % 20));
    return i420;
}

Frame noise(int width, int height, int seed) {
    std::mt19937 random(static_cast<unsigned>(seed));
    Frame i420(static_cast<std::size_t>(width * height * 3 / 2), 128);
    for (int i = 0; i < width * height; ++i)
        i420[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(16 + random() % 220);
    return i420;
}

double psnr(const Frame& a, const Frame& b) {
    double squares = 0;
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i)
        squares += (a[i] - b[i]) * (a[i] - b[i]);
    return squares == 0 ? 100 : 10 * std::log10(255.0 * 255 * double(a.size()) / squares);
}

std::vector<Packet> packets(const std::filesystem::path& file) {
    std::vector<Packet> all;
    AVFormatContext* opened = nullptr;
    if (avformat_open_input(&opened, file.c_str(), nullptr, nullptr) < 0)
        return all;
    const orbitwalk::media::InputPtr container(opened);
    const auto packet = orbitwalk::media::makePacket();
    while (av_read_frame(opened, packet.get()) >= 0) {
        const double unit = av_q2d(opened->streams[0]->time_base);
        all.push_back({(packet->flags & AV_PKT_FLAG_KEY) != 0, double(packet->pts) * unit,
                       double(packet->duration) * unit, packet->size});
        av_packet_unref(packet.get());
    }
    return all;
}

MemoryStream::MemoryStream(std::size_t room)
    : mRoom(room), mFile(fopencookie(this, "wb", {nullptr, writeBytes, nullptr, nullptr})) {}

MemoryStream::~MemoryStream() {
    std::fclose(mFile);
}

ssize_t MemoryStream::writeBytes(void* self, const char* bytes, std::size_t size) {
    auto& stream = *static_cast<MemoryStream*>(self);
    if (stream.mBytes.size() + size > stream.mRoom) {
        errno = ENOSPC;
        return 0;
    }
    stream.mBytes.append(bytes, size);
    return static_cast<ssize_t>(size);
}

}  // namespace clips
