#pragma once

#include <optional>
#include <string>
#include <vector>

#include "media/VideoReader.h"
#include "sweep/Summary.h"

namespace orbitwalk::tool {

/// What of a captured video the sweep does not keep.
struct VideoFacts {
    std::optional<media::RateRange> variableRate{};
    /// By how much the video is marked to be shown turned, clockwise, when no orientation was
    /// given.
    int unheededRotation = 0;
    bool trimmed = false;    ///< It has an odd last column or row.
    double pixelAspect = 1;  ///< Width of a pixel over its height.
    bool audio = false;
    bool wideColour = false;  ///< HDR or BT.2020.
    media::Completeness completeness{};
};

/// A line for each thing in which the sweep is not what its video suggests.
std::vector<std::string> notesOn(const Summary& summary, const VideoFacts& video);

/// A line for each thing that makes the sweep of little use.
std::vector<std::string> warningsOf(const Summary& summary, const VideoFacts& video);

}  // namespace orbitwalk::tool
