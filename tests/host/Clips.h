#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

/// Small pictures and files that the host's tests make for themselves.
namespace clips {

using Frame = std::vector<std::uint8_t>;

/// A smooth picture whose pattern moves by three pixels a frame: compresses well, and no two frames
/// are alike.
Frame movingWaves(int width, int height, int frame);
/// Independent grey noise: no encoder can foresee any of it.
Frame noise(int width, int height, int seed);
/// Peak signal-to-noise ratio in dB over all bytes; 100 when they are equal.
double psnr(const Frame& a, const Frame& b);

/// What the container says of each packet of the first stream.
struct Packet {
    bool isKey;
    double seconds;   ///< Presentation time.
    double duration;  ///< Seconds.
    int bytes;
};
std::vector<Packet> packets(const std::filesystem::path& file);

/// A stream into memory that cannot seek and that has room for so many bytes: then the disk is
/// full.
class MemoryStream {
  public:
    explicit MemoryStream(std::size_t room = SIZE_MAX);
    ~MemoryStream();
    MemoryStream(const MemoryStream&) = delete;
    MemoryStream& operator=(const MemoryStream&) = delete;

    std::FILE* file() { return mFile; }
    /// What has left stdio's buffer.
    const std::string& bytes() const { return mBytes; }

  private:
    static ssize_t writeBytes(void* self, const char* bytes, std::size_t size);

    std::size_t mRoom;
    std::string mBytes;
    std::FILE* mFile;
};

}  // namespace clips
