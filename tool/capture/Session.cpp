#include "capture/Session.h"

#include <array>
#include <utility>

#include "MP4Writer.h"

namespace orbitwalk::tool {
namespace {

// Enough to keep the encoder at work, and few of the 15 slots of the engine's ring, which thus
// never has to grow: frames that wait for long leave the processor's cache, and the encoder is left
// alone with them at the end.
constexpr int kWaitingFrames = 4;

/// A path that is kept in doubles is the engine's floats, and goes back as it came.
std::array<float, 3> asFloats(const Trajectory& point) {
    return {static_cast<float>(point.x), static_cast<float>(point.y), static_cast<float>(point.a)};
}

}  // namespace

Session::Engine::Engine(OBWEngineListener* listener) {
    initOrbitwalkEngine(listener);
}

Session::Engine::~Engine() {
    deinitOrbitwalkEngine();
}

Session::Session(const SessionSettings& settings, std::FILE* mp4)
    : mRecord(std::make_unique<__kelOBWKDXMetaData>()),
      mMp4Name(settings.mp4Name),
      mEncoderPatience(settings.encoderPatience),
      mEngine(std::make_unique<Engine>(static_cast<OBWEngineListener*>(this))) {
    if (getSizeOrbitwalkInformation() != sizeof *mRecord)
        throw ToolError("the engine's motion record has another size than this tool's");
    _OBW_ENGINE_INIT_PARAM param{};
    param.imageWidth = settings.width;
    param.imageHeight = settings.height;
    param.fpMP4 = mp4;
    param.pWideReelInfo = mRecord.get();
    param.frontCamFlipped = settings.frontCameraFlipped;
    param.orientation = settings.orientation;
    if (startOrbitwalkEngine(&param) != 1)
        throw failure("the engine cannot capture " + std::to_string(settings.width) + "x" +
                      std::to_string(settings.height) + " frames");
}

Session::~Session() {
    if (mEngine)
        cancelOrbitwalkEngine();
}

Trajectory Session::measure(std::span<const std::uint8_t> frame) {
    float x = 0, y = 0, a = 0;
    getTrajectory(frame.data(), &x, &y, &a);
    return {x, y, a};
}

bool Session::waitForRoom(std::chrono::milliseconds timeout) {
    if (!mLog.writerFailure().empty())
        throw failure("the capture failed");
    const int wanted = mFed - kWaitingFrames;
    const int encoded = WaitMP4EngineFrames(wanted, static_cast<int>(timeout.count()));
    const auto now = Clock::now();
    const bool room = encoded >= wanted;
    if (room || encoded != std::exchange(mEncoded, encoded))
        mEncoderMoved = now;
    if (now - mEncoderMoved > mEncoderPatience)
        throw failure("the encoder has stopped taking frames");
    return room;
}

void Session::feed(std::span<const std::uint8_t> frame, const Trajectory& point) {
    const auto [x, y, a] = asFloats(point);
    if (provideFrameandTrajectory(frame.data(), x, y, a) != 1)
        throw failure("the engine refused frame " + std::to_string(mFed));
    ++mFed;
}

const __kelOBWKDXMetaData& Session::finish(std::span<const Trajectory> path,
                                           const SweepSelection& selection, Progress progress) {
    std::vector<_ENCODING_FRAME_INFORMATION> frames;
    for (std::size_t i = 0; i < path.size(); ++i) {
        const auto [x, y, a] = asFloats(path[i]);
        frames.push_back({x, y, a, selection.flags.at(i), 0, 0});
    }
    mProgress = std::move(progress);
    mStopped = Clock::now();
    if (stopOrbitwalkEngine(selection.first, selection.last, frames.data(),
                            static_cast<int>(frames.size()), selection.direction) != 1) {
        const ToolError refused = failure("the engine refused to end the sweep");
        if (mLog.failure().find("pthread_create") != std::string::npos)
            abandonEngine();
        throw refused;
    }
    mEngine.reset();
    // The engine does not look at the result of closing the MP4: only the log tells.
    if (!secondsUntil(100) || !mLog.writerFailure().empty())
        throw failure("the capture failed");
    return *mRecord;
}

/// An engine that cannot make its thread at stop keeps its lock: every further call would wait for
/// ever. What it holds is left to the end of the process, once its encoder no longer writes.
void Session::abandonEngine() {
    WaitMP4EngineFrames(mFed, static_cast<int>(mEncoderPatience.count()));
    static_cast<void>(mEngine.release());
}

std::optional<double> Session::secondsUntil(int percent) const {
    const std::lock_guard lock(mMutex);
    for (const Mark& mark : mMarks)
        if (mark.percent == percent)
            return std::chrono::duration<double>(mark.time - mStopped).count();
    return std::nullopt;
}

void Session::onProgress(int, int percent) {
    {
        const std::lock_guard lock(mMutex);
        mMarks.push_back({percent, Clock::now()});
    }
    if (mProgress)
        mProgress(percent);
}

ToolError Session::failure(const std::string& what) const {
    const std::string cause = mLog.failure();
    const std::string where =
        mLog.writerFailure().empty() || mMp4Name.empty() ? "" : mMp4Name + ": ";
    return ToolError(cause.empty() ? what : what + ": " + where + cause);
}

}  // namespace orbitwalk::tool
