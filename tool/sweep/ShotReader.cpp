#include "sweep/ShotReader.h"

#include "terminal/SignalGuard.h"

namespace orbitwalk::tool {

ShotReader::ShotReader(const Sweep& sweep, std::vector<Shot> shots)
    : mName(sweep.files.video),
      mShots(std::move(shots)),
      mVideo(sweep.files.video, {.interrupted = [] { return SignalGuard::received() != 0; }}),
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
    const std::size_t number = mNext++;
    return ShotFrame{mShots[number], mFrame, number};
}

bool ShotReader::decodeFrame() {
    SignalGuard::check();
    auto pixels = std::make_shared<std::vector<std::uint8_t>>();
    if (!mVideo.read(*pixels))
        return false;
    mFrame = std::move(pixels);
    ++mFramesRead;
    return true;
}

}  // namespace orbitwalk::tool
