#include "media/EncoderSettings.h"

#include <string>

namespace orbitwalk::media {

namespace {

constexpr int kLargestSide = 16384;
constexpr int kMostThreads = 64;
constexpr std::int64_t kSmallestBitRate = 1000;
constexpr std::int64_t kLargestBitRate = 1'000'000'000;

bool isGoodSide(int side) {
    return side >= 2 && side <= kLargestSide && side % 2 == 0;
}

void require(bool good, const char* setting, const std::string& value) {
    if (!good)
        throw MediaError(std::string("cannot record with ") + setting + " " + value);
}

}  // namespace

void validate(const EncoderSettings& s) {
    require(isGoodSide(s.width) && isGoodSide(s.height), "frame size",
            std::to_string(s.width) + "x" + std::to_string(s.height));
    require(s.frameRate.numerator > 0 && s.frameRate.denominator > 0, "frame rate",
            std::to_string(s.frameRate.numerator) + "/" + std::to_string(s.frameRate.denominator));
    require(s.rotation >= 0 && s.rotation < 360 && s.rotation % 90 == 0, "rotation",
            std::to_string(s.rotation));
    require(s.bitRate == 0 || (s.bitRate >= kSmallestBitRate && s.bitRate <= kLargestBitRate),
            "bit rate", std::to_string(s.bitRate));
    require(s.quality >= 0 && s.quality <= 51, "quality", std::to_string(s.quality));
    require(s.keyFrameInterval >= 1, "key-frame interval", std::to_string(s.keyFrameInterval));
    require(s.speed >= 0 && s.speed <= 9, "speed", std::to_string(s.speed));
    require(s.threads >= 0 && s.threads <= kMostThreads, "threads", std::to_string(s.threads));
}

}  // namespace orbitwalk::media
