#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "simulate/SimulationSettings.h"

namespace orbitwalk::tool {

/// A clip to simulate, and where to.
struct ClipOptions {
    SimulationSettings settings;
    std::filesystem::path photo;  ///< Empty: a textured scene.
    std::filesystem::path clip;
    std::filesystem::path truth;  ///< Empty: not written.
    int quality = 12;             ///< Constant rate factor of the encoder.
    std::int64_t bitRate = 0;     ///< Bits a second instead, when not 0.
    bool replaceForeign = false;  ///< Files that the tool did not write may be replaced.
};

struct ClipSummary {
    double photoScale = 1;  ///< Pixels of the photograph for one of the clip.
    Trajectory extent;      ///< Of the picture's path; pixels and radians.
    Trajectory end;
    double seconds = 0;  ///< Wall clock.
};

/// Writes the clip and its truth, all or nothing, with progress on the terminal.
/// @throws UsageError for names that are taken twice or do not end as what is written; ToolError.
ClipSummary simulateClip(const ClipOptions& options);

/// Angles in degrees.
std::string toText(const ClipOptions& options, const ClipSummary& summary);
/// Angles in radians, as in the truth.
std::string toJsonText(const ClipOptions& options, const ClipSummary& summary);

}  // namespace orbitwalk::tool
