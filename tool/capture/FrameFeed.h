#pragma once

#include <vector>

#include "capture/Session.h"
#include "media/VideoReader.h"
#include "sweep/Summary.h"
#include "terminal/SignalGuard.h"

namespace orbitwalk::tool {

/// What came of feeding a video.
struct Feed {
    std::vector<Trajectory> path;  ///< One point a frame.
    bool truncated = false;        ///< The video has more frames than a sweep can hold.
};

/// Decodes the video and gives each frame to the session, at most as many as a sweep can hold.
/// @param realtime  paces the frames at the video's rate; otherwise they come as fast as the
/// encoder takes them.
/// @throws ToolError, also on a signal; MediaError.
Feed feedVideo(media::VideoReader& video, Session& session, bool realtime,
               const SignalGuard& signals, StageSeconds& seconds);

}  // namespace orbitwalk::tool
