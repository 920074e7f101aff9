#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "files/OutputFiles.h"
#include "orbitwalk/refine/MotionEstimator.h"
#include "orbitwalk/refine/PathPlanner.h"
#include "sweep/RefinedSummary.h"
#include "sweep/Sweep.h"

/// What `orbitwalk refine` does: the motion measured anew, the path planned over the whole sweep,
/// and a second record beside the engine's.
namespace orbitwalk::tool {

/// How much of the view a plan may give up.
struct PlanWish {
    std::optional<double> keep;  ///< Share of width and height that the crop has, (0, 1].
    /// Without it, the largest crop that leaves at most this share of the residual shift recorded.
    double steadiness = 0.05;
};

/// @throws UsageError for a keep or a steadiness that cannot be.
void requireUsable(const PlanWish& wish);

struct MeasuredMotions {
    std::vector<refine::FrameMotion> motions;
    std::string video;   ///< Name of the file that they were measured in.
    double seconds = 0;  ///< That it took; 0 where they were there already.
};

/// Measures frames as they come. One thread at a time.
class FrameMeasurer {
  public:
    /// @throws ToolError for frames too small to measure in.
    explicit FrameMeasurer(FrameSize size);
    /// @param frame  I420.
    void operator()(std::span<const std::uint8_t> frame);
    int measured() const { return static_cast<int>(mMotions.motions.size()); }
    /// The motions of all frames. @param video  the name to give their source.
    MeasuredMotions motions(std::string video) &&;

  private:
    FrameSize mSize;
    refine::MotionEstimator mEstimator;
    MeasuredMotions mMotions;
};

/// Tells the number of frames measured so far, and may throw.
using Measured = std::function<void(int)>;

/// Measures a video from a frame on, one motion a frame.
/// @throws ToolError when it has fewer frames or another size; MediaError.
std::vector<refine::FrameMotion> measureVideo(const std::filesystem::path& video, FrameSize size,
                                              int firstFrame, int frames, const Measured& measured);

struct RefinedSweep {
    refine::PathPlan plan;
    std::vector<std::byte> record;  ///< As refined.obw holds it.
};

/// The plan for a sweep and its record.
/// @param motions  one a frame of the engine's record, whose facts the new one takes over.
/// @throws ToolError with the planner's or the writer's reason.
RefinedSweep planSweep(std::span<const refine::FrameMotion> motions, const RecordReader& record,
                       const PlanWish& wish);

/// Plans, and begins refined.obw, refined.csv and refined.json: the caller commits them.
/// @param record  the sweep's. @param sums  of it and of its video.
/// @throws ToolError; see planSweep.
RefinedSummary writeRefinement(OutputFiles& outputs, const SweepFiles& files,
                               const MeasuredMotions& measured, const RecordReader& record,
                               const SweepChecksums& sums, const PlanWish& wish);

struct RefineOptions {
    std::filesystem::path directory;
    PlanWish wish;
    bool replan = false;  ///< From the motions of refined.csv, without decoding.
    bool force = false;   ///< Replaces files of these names that the tool did not write, too.
};

/// Writes refined.obw, refined.csv and refined.json beside a captured sweep, all or none.
/// @throws ToolError, also on a signal; MediaError.
RefinedSummary refineSweep(const RefineOptions& options);

}  // namespace orbitwalk::tool
