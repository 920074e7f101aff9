#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

#include "capture/FrameWorker.h"
#include "capture/Session.h"
#include "media/FramesAhead.h"
#include "media/VideoReader.h"
#include "sweep/Summary.h"

namespace orbitwalk::tool {

/// Runs the stage, adds its wall-clock time to the seconds, and returns its result.
template <typename Stage>
auto timed(double& seconds, Stage&& stage) {
    using Clock = std::chrono::steady_clock;
    struct Addition {
        ~Addition() { seconds += std::chrono::duration<double>(Clock::now() - start).count(); }
        double& seconds;
        Clock::time_point start = Clock::now();
    } const addition{seconds};
    return stage();
}

/// A video whose frames are being decoded, on a thread of their own.
struct FrameSource {
    /// @param video  is asked for nothing else until this is gone.
    explicit FrameSource(media::VideoReader& video);

    std::int64_t expected;  ///< Frames of a sweep, by the video's word; see VideoReader.
    media::FrameRate rate;
    media::FramesAhead frames;
};

/// What came of feeding a video.
struct Feed {
    std::vector<Trajectory> path;  ///< One point a frame.
    bool truncated = false;        ///< The video has more frames than a sweep can hold.
};

/// Told of every frame that is fed, I420, in order, on another thread, up to a few frames after the
/// engine.
using BesideEngine = FrameWorker::Work;

/// Gives each frame to the session, at most as many as a sweep can hold.
/// @param source  gone on return.
/// @param realtime  paces the frames at the video's rate; otherwise they come as fast as the
/// encoder takes them.
/// @throws ToolError, also on a signal; MediaError; what besideEngine throws.
Feed feedVideo(std::unique_ptr<FrameSource> source, Session& session, bool realtime,
               StageSeconds& seconds, const BesideEngine& besideEngine = {});

}  // namespace orbitwalk::tool
