#include "evaluate/LumaVideo.h"

#include <opencv2/core.hpp>

namespace orbitwalk::tool {

LumaVideo::LumaVideo(const std::filesystem::path& file, bool mirrored)
    : mVideo(file), mMirrored(mirrored) {}

cv::Mat1b LumaVideo::next() {
    if (!mVideo.read(mPixels))
        return {};
    ++mFramesRead;
    const cv::Mat1b luma(mVideo.height(), mVideo.width(), mPixels.data());
    if (!mMirrored)
        return luma.clone();
    cv::Mat1b mirrored;
    cv::flip(luma, mirrored, 1);
    return mirrored;
}

}  // namespace orbitwalk::tool
