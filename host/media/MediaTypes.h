#pragma once

#include <stdexcept>

namespace orbitwalk::media {

/// What went wrong with a video, in one line. From a reader it names the file; a writer knows only
/// its stream.
class MediaError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct FrameRate {
    int numerator = 30;
    int denominator = 1;
};

/// Whether a picture of this size is coded by BT.709 rather than BT.601: the matrix that players
/// assume when nobody says. Cameras of high definition use BT.709, those before it BT.601.
constexpr bool isHighDefinition(int width, int height) {
    return width >= 1280 || height > 576;
}

}  // namespace orbitwalk::media
