#pragma once

#include <cstdint>
#include <vector>

#include "media/AvHandles.h"

namespace orbitwalk::media {

/// Turns decoded pictures of any format into tightly packed 8-bit I420 of video range. An odd last
/// column or row is cut off. Pictures that are I420 already are only copied.
class I420Packer {
  public:
    /// @param i420  resized to width * height * 3 / 2 of the even picture size
    /// @throws MediaError when libswscale cannot convert the picture's format.
    void pack(const AVFrame& picture, std::vector<std::uint8_t>& i420);

  private:
    const AVFrame& convert(const AVFrame& picture);
    void prepareScaler(const AVFrame& picture);

    ScalerPtr mScaler;
    FramePtr mConverted;
    /// What mScaler was made for.
    int mFormat = AV_PIX_FMT_NONE;
    bool mFullRange = false;
};

}  // namespace orbitwalk::media
