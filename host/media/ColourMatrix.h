#pragma once

namespace orbitwalk::media {

/// How red, green and blue make up a picture's luma and colour planes.
enum class ColourMatrix { Bt601, Bt709 };

/// The one rule of this system: I420 frames of a size, wherever they are made, read or written, are
/// coded by this matrix, the one that players assume when a stream does not say. Cameras of high
/// definition use BT.709, those before it BT.601. Streams that are written say it; streams that say
/// another one are converted as they are read.
constexpr ColourMatrix colourMatrixOf(int width, int height) {
    return width >= 1280 || height > 576 ? ColourMatrix::Bt709 : ColourMatrix::Bt601;
}

/// Shares of red and blue in luma; the rest is green's.
struct LumaWeights {
    double red = 0;
    double blue = 0;
};

constexpr LumaWeights lumaWeights(ColourMatrix matrix) {
    return matrix == ColourMatrix::Bt709 ? LumaWeights{0.2126, 0.0722} : LumaWeights{0.299, 0.114};
}

}  // namespace orbitwalk::media
