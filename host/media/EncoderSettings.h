#pragma once

#include <cstdint>
#include <optional>

#include "media/ColourMatrix.h"
#include "media/MediaTypes.h"

namespace orbitwalk::media {

struct EncoderSettings {
    int width = 0;   ///< Even, pixels, at most 16384.
    int height = 0;  ///< Even, pixels, at most 16384.
    FrameRate frameRate;
    /// Of the frames, where it is not that of their size: two of them beside each other, say.
    std::optional<ColourMatrix> matrix;
    int rotation =
        0;  ///< By how much players turn the picture, clockwise: 0, 90, 180, 270 degrees.
    std::int64_t bitRate = 0;  ///< Bits per second, 1000 to 10^9; 0: constant quality instead.
    int quality = 18;  ///< Constant rate factor, 0 to 51, used when bitRate is 0; lower is better.
    int keyFrameInterval = 15;  ///< A key frame stands at every multiple of it and nowhere else.
    int speed = 7;              ///< 0 (smallest file) to 9 (fastest).
    int threads = 0;            ///< 0: as many as the machine has cores.
    bool fragmented = false;    ///< Complete fragments as it goes, for streams that cannot seek.
};

/// @throws MediaError that names the first setting outside its range.
void validate(const EncoderSettings& settings);

}  // namespace orbitwalk::media
