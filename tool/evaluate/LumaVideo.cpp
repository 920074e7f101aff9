#include "evaluate/LumaVideo.h"

namespace orbitwalk::tool {

LumaVideo::LumaVideo(const std::filesystem::path& file) : mVideo(file) {}

bool LumaVideo::next() {
    if (!mVideo.read(mPixels))
        return false;
    mLuma = cv::Mat1b(mVideo.height(), mVideo.width(), mPixels.data());
    ++mFramesRead;
    return true;
}

}  // namespace orbitwalk::tool
