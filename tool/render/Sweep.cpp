#include "render/Sweep.h"

#include <string>

#include "common/RecordFile.h"
#include "common/SweepFiles.h"
#include "common/ToolError.h"

namespace orbitwalk::tool {

namespace {

std::string sizeText(int width, int height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

}  // namespace

Sweep openSweep(const std::filesystem::path& directory) {
    const std::filesystem::path recordFile = directory / kSweepRecordName;
    Sweep sweep{directory / kSweepVideoName, directory / kSweepPathName,
                readRecordFile(recordFile)};
    if (playlist(sweep.record).empty())
        throw ToolError(recordFile.string() + ": the record renders no frame");
    return sweep;
}

ShotReader::ShotReader(const Sweep& sweep, std::vector<Shot> shots)
    : mName(sweep.video),
      mShots(std::move(shots)),
      mVideo(sweep.video),
      mFramesInRecord(sweep.record.frameCount()) {
    const cv::Size size = sweep.size();
    if (mVideo.width() != size.width || mVideo.height() != size.height)
        throw ToolError(mName.string() + ": the video is " +
                        sizeText(mVideo.width(), mVideo.height()) + ", its record says " +
                        sizeText(size.width, size.height));
}

std::optional<ShotFrame> ShotReader::next() {
    const bool ended = mNext == mShots.size();
    while (ended || mFramesRead <= mShots[mNext].frame)
        if (!decodeFrame()) {
            checkFrameCount();
            return std::nullopt;
        }
    const Shot& shot = mShots[mNext++];
    return ShotFrame{shot, mFrame};
}

bool ShotReader::decodeFrame() {
    auto pixels = std::make_shared<std::vector<std::uint8_t>>();
    if (!mVideo.read(*pixels))
        return false;
    mFrame = std::move(pixels);
    ++mFramesRead;
    return true;
}

void ShotReader::checkFrameCount() const {
    if (mFramesRead != mFramesInRecord)
        throw ToolError(mName.string() + ": the video has " + std::to_string(mFramesRead) +
                        " frames, its record says " + std::to_string(mFramesInRecord));
}

}  // namespace orbitwalk::tool
