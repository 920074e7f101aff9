#pragma once

/// @file
/// Plans the corrections of a whole sweep at once: the steadiest path that one crop rectangle
/// allows.
///
/// Pure functions: no state, no log, no lock; usable on any thread, several at a time. The same
/// input gives the same bits. Errors come back as a PlanRefusal; only std::bad_alloc is thrown.
/// docs/refine.md has the equations and their sources. Conventions: orbitwalk/Geometry.h.

#include <limits>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "orbitwalk/Export.h"
#include "orbitwalk/Geometry.h"
#include "orbitwalk/refine/Motion.h"

namespace orbitwalk::refine {

enum class PlanFault {
    NoFrames,    ///< Not one motion given.
    FrameSize,   ///< A side below 4 or above 32767 pixels.
    Motion,      ///< Not a number, or beyond any frame: see planPath.
    Keep,        ///< Not within (0, 1].
    Options,     ///< A limit that is negative or not a number.
    Steadiness,  ///< No crop of planForSteadiness reaches it; the text names the nearest.
    Selection    ///< Shown frames that do not rise, or that there are no motions for.
};

struct PlanRefusal {
    PlanFault fault;
    std::string text;
};

struct PlanOptions {
    /// Largest magnitude of a correction, by axis: pixels of the frame and radians.
    double limitX = std::numeric_limits<double>::infinity();
    double limitY = std::numeric_limits<double>::infinity();
    double limitAngle = std::numeric_limits<double>::infinity();
    /// Smooths the zoom of the scene as well. Corrections then scale: the crop rectangle covers
    /// less or more of a frame by up to limitLogScale (natural logarithm), see PathPlan::viewKept.
    bool smoothScale = false;
    double limitLogScale = 0.05;
    /// The frames that a player shows, rising; empty for all. The motions of frames that are left
    /// out are bridged where they have to be and go into those of the frames that follow.
    std::vector<int> shown = {};
};

/// Root mean square of the second difference of the picture's path at the picture's centre, that
/// is of the change of its motion from one frame to the next. An even pan gives 0. Pixels of the
/// frame (a player that enlarges the crop to the frame's size shows them divided by `keep`) and
/// radians. 0 for fewer than three frames.
struct PathResidual {
    double x = 0;
    double y = 0;
    double angle = 0;

    double shift() const { return std::hypot(x, y); }  ///< Both axes together.
};

struct PathPlan {
    FrameSize size;
    /// In the output picture, about its centre: the sides have the parity of the frame's.
    CropRectangle crop;
    std::vector<int> shown;  ///< The frames planned for; what follows has one entry for each.
    /// What is done to the frame so that it shows in the output picture, about the
    /// frame's centre. Rigid unless the scale is smoothed. Under each, every point that a player
    /// shows of the crop lies between the frame's outermost pixel centres.
    std::vector<SimilarityTransform> corrections;
    /// Of the picture since the shown frame before, about the frame's centre: as measured, or
    /// bridged. The first is nothing.
    std::vector<SimilarityTransform> motions;
    /// Frames, shown or not, whose motion was asked for and not measured; rising.
    std::vector<int> bridged;
    PathResidual before;  ///< Of the frames as they are.
    PathResidual after;   ///< Of the corrected ones.
    double viewKept = 1;  ///< Share of the frame's area that the crop shows, mean of the frames.
    /// Of the last programme that was solved, in pixels squared: its value, and how far it may lie
    /// above the optimum (the duality gap).
    double objective = 0;
    double dualityGap = 0;
    int steps = 0;  ///< Interior-point steps in all.
};

/// Plans the corrections for a crop of the given size. Linear in the number of frames.
/// @param motions  of the picture, one a frame since the frame before; the first one's is not
///        looked at. Where one is not measured, it is taken between the measured ones on both
///        sides. Measured ones: shift within the frame's sides, at most a quarter turn, logarithm
///        of the scale within 1.
/// @param keep  share of the frame's width and height that the crop rectangle has, (0, 1]. 1 leaves
///        no room: all corrections are nothing.
OBW_API std::variant<PathPlan, PlanRefusal> planPath(std::span<const FrameMotion> motions,
                                                     FrameSize size, double keep,
                                                     const PlanOptions& options = {});

/// The plan with the largest crop, from 1 down to 0.5 and to a thousandth, whose residual shift
/// (PathPlan::after, x and y together, pixels of the frame) is at most the one given.
/// @param residual  0 or more.
OBW_API std::variant<PathPlan, PlanRefusal> planForSteadiness(std::span<const FrameMotion> motions,
                                                              FrameSize size, double residual,
                                                              const PlanOptions& options = {});

}  // namespace orbitwalk::refine
