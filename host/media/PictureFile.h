#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Single pictures, as files hold them.
namespace orbitwalk::media {

/// Eight bits a channel, rows without gaps.
struct Picture {
    int width = 0;
    int height = 0;
    int channels = 3;  ///< 3: red, green, blue; 4: and alpha.
    std::vector<std::uint8_t> pixels;
};

/// Decodes a picture of any format that FFmpeg knows, upright (a JPEG may say that it is to be
/// turned or mirrored) and without its alpha. Colours of a JPEG are full-range BT.601.
/// @throws MediaError when it is none, or damaged so that nothing can be shown.
Picture decodePicture(std::span<const char> bytes);

/// Without loss. @throws MediaError.
std::vector<std::uint8_t> encodePng(const Picture& picture);

/// Of three channels; 4:2:0, good enough to look at. @throws MediaError.
std::vector<std::uint8_t> encodeJpeg(const Picture& picture);

}  // namespace orbitwalk::media
