#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "orbitwalk/Geometry.h"
#include "orbitwalk/refine/PathPlanner.h"
#include "sweep/Summary.h"
#include "sweep/Verdict.h"

/// refined.json: what a refinement came to, and which files belong to it.
namespace orbitwalk::tool {

/// Wall-clock seconds of each stage.
struct RefineSeconds {
    double measure = 0;  ///< Decoding included; 0 where the motions were there already.
    double plan = 0;
    double total = 0;
};

struct RefinedSummary {
    std::string toolVersion{tool::toolVersion()};
    std::string video;  ///< Name of the file that the motions were measured in.
    FrameSize size;
    int frames = 0;
    int rendered = 0;
    CropRectangle crop;
    double keep = 1;              ///< Share of width and height that the crop has.
    double viewKept = 1;          ///< Share of the frame's area that is shown, mean of the frames.
    refine::PathResidual before;  ///< Of the frames as recorded, by the measured motions.
    refine::PathResidual after;   ///< Of the frames as the record shows them.
    std::vector<int> unmeasured;  ///< Frames whose motion is taken from those beside it.
    RefineSeconds seconds;
    /// Of the sweep.mp4 and the sweep.obw that it was planned beside. The record alone names no
    /// sweep: where the engine could measure nothing, those of all sweeps are the same.
    std::string engineVideo;
    std::string engineRecord;
    std::string motions;  ///< Checksum of refined.csv.
    std::string record;   ///< Checksum of refined.obw.
};

Steadiness steadinessOf(const RefinedSummary& summary);

/// With the verdict, as the JSON is.
std::string toText(const RefinedSummary& summary);
nlohmann::ordered_json toJson(const RefinedSummary& summary);
/// What refined.json holds.
std::string toJsonText(const RefinedSummary& summary);

/// Reads the text of a refined.json. @throws ToolError that says what is missing or out of range.
RefinedSummary parseRefinedSummary(std::string_view text);

/// Reads a refined.json and compares the files beside it with its checksums.
/// @throws ToolError in one line that names the file that cannot be read, is no summary or does not
/// belong to it.
RefinedSummary openRefinedSummary(const SweepFiles& files);

}  // namespace orbitwalk::tool
