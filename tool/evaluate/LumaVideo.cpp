#include "evaluate/LumaVideo.h"

#include <opencv2/core.hpp>

namespace orbitwalk::tool {

LumaVideo::LumaVideo(const std::filesystem::path& file, bool mirrored)
    : mVideo(file), mMirrored(mirrored) {}

bool LumaVideo::next() {
    if (!mVideo.read(mPixels))
        return false;
    const cv::Mat1b luma(mVideo.height(), mVideo.width(), mPixels.data());
    if (mMirrored)
        cv::flip(luma, mLuma, 1);
    else
        mLuma = luma;
    ++mFramesRead;
    return true;
}

}  // namespace orbitwalk::tool
