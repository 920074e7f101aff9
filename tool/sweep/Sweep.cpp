#include "sweep/Sweep.h"

#include <string>

#include "sweep/RecordFile.h"
#include "sweep/SweepFiles.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

std::string textOf(cv::Size size) {
    return std::to_string(size.width) + "x" + std::to_string(size.height);
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

void requireSize(const std::filesystem::path& video, cv::Size size, cv::Size recorded) {
    if (size != recorded)
        throw ToolError(video.string() + ": the video is " + textOf(size) + ", its record says " +
                        textOf(recorded));
}

void requireFrameCount(const std::filesystem::path& video, int frames, int recorded) {
    if (frames != recorded)
        throw ToolError(video.string() + ": the video has " + std::to_string(frames) +
                        " frames, its record says " + std::to_string(recorded));
}

ShotReader::ShotReader(const Sweep& sweep, std::vector<Shot> shots)
    : mName(sweep.video),
      mShots(std::move(shots)),
      mVideo(sweep.video),
      mFramesInRecord(sweep.record.frameCount()) {
    requireSize(mName, {mVideo.width(), mVideo.height()}, sweep.size());
}

std::optional<ShotFrame> ShotReader::next() {
    const bool ended = mNext == mShots.size();
    while (ended || mFramesRead <= mShots[mNext].frame)
        if (!decodeFrame()) {
            requireFrameCount(mName, mFramesRead, mFramesInRecord);
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

}  // namespace orbitwalk::tool
