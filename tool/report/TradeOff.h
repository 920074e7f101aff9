#pragma once

#include <limits>
#include <string>
#include <vector>

#include "sweep/RefinedSummary.h"
#include "sweep/Sweep.h"

/// What a refinement is judged by: both records' paths, what remains of the motion in each, and
/// what other crops would have left.
namespace orbitwalk::tool {

inline constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();

/// One value a frame of the video; kNoValue where a frame has none. Pixels, pixels, degrees.
struct Track {
    explicit Track(int frames = 0) : x(frames, kNoValue), y(x), angle(x) {}
    void set(int frame, const Trajectory& value);

    std::vector<double> x;
    std::vector<double> y;
    std::vector<double> angle;
};

/// The picture as recorded or as a record shows it, about its centre, by the refinement's motions.
struct PictureTrack {
    std::string name;
    Track path;    ///< Its motions summed since the first rendered frame.
    Track change;  ///< Of its motion from one frame to the next, what the eye takes for shake.
    refine::PathResidual residual;
    double keep = 1;  ///< Share of width and height that is shown: the root of the area's.
};

/// A crop, and the residual of the steadiest path that it allows.
struct TradeOff {
    double keep = 1;
    refine::PathResidual residual;
};

struct RefinedPaths {
    RefinedSummary summary;
    std::vector<PictureTrack> tracks;  ///< As recorded, the engine's record, the refined one.
    std::vector<TradeOff> plans;       ///< Rising keep.
};

/// @param sweep  whose record is that of its refinement. @throws ToolError with the planner's
/// reason.
RefinedPaths refinedPaths(const Sweep& sweep);

}  // namespace orbitwalk::tool
