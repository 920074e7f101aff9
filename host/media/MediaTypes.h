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

}  // namespace orbitwalk::media
