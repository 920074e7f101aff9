#pragma once

#include <cstdio>
#include <functional>

#include "sweep/ShotReader.h"

namespace orbitwalk::tool {

struct SteadySettings {
    bool borderFrames = false;  ///< Show the record's frames before and after the sweep.
    bool compare = false;       ///< The frames as recorded on the left, stabilised on the right.
    int quality = 18;           ///< Constant rate factor, used when bitRate is 0.
    std::int64_t bitRate = 0;   ///< Bits per second.
    int threads = 0;            ///< See forEachShot.
};

struct SteadyVideo {
    cv::Size size;
    int leftBorderFrames = 0;
    int sweepFrames = 0;
    int rightBorderFrames = 0;
    std::int64_t missingPixels = 0;  ///< Of the sweep's frames, see missingPixels.
    int incompleteFrames = 0;        ///< Of them: frames with missing pixels.

    int frames() const { return leftBorderFrames + sweepFrames + rightBorderFrames; }
};

/// Plays a sweep into an MP4 as a player would show it. The same sweep and settings give the same
/// bytes, whatever the number of threads.
/// @param stream    seekable. @param name  of its file, for complaints.
/// @param progress  told the number of frames written so far.
/// @throws ToolError, MediaError: see ShotReader and VideoWriter.
SteadyVideo writeSteadyVideo(const Sweep& sweep, const SteadySettings& settings, std::FILE* stream,
                             const std::filesystem::path& name,
                             const std::function<void(int)>& progress);

}  // namespace orbitwalk::tool
