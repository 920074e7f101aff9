#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "orbitwalk/Geometry.h"
#include "orbitwalk/refine/Motion.h"

/// The tables of a sweep: a line a frame, counted from 0, under one line of names. Numbers are
/// written with the fewest digits that read back as the same value, whatever the locale. Readers
/// throw ToolError that names the first line that is no row, or the file that cannot be read or has
/// other than the frames to expect; values must be finite, flags 0 or 1.
namespace orbitwalk::tool {

/// A row of sweep.csv, the measured path: `frame,x,y,a,flag,repeated`.
struct SweepRow {
    /// Where the picture stands in the frame as the engine measured it, its motion summed since the
    /// first frame. The engine's floats: the file holds the digits of a float.
    Trajectory position;
    int flag = 0;           ///< 1: the frame was offered for rendering.
    bool repeated = false;  ///< Its motion could not be measured and repeats the last one.
};

/// Top-left pixel of the region that the engine measures in: it keeps every fourth pixel, from the
/// first, and leaves a fifth of the columns and rows out at each side. The motions of a path are
/// about this point, on which the shift that goes with a turn depends.
PicturePoint measuringOrigin(FrameSize size);

std::string sweepCsv(std::span<const SweepRow> path);
std::vector<SweepRow> parseSweepCsv(std::string_view text);
/// @param frames  number of rows to expect.
std::vector<SweepRow> readSweepCsv(const std::filesystem::path& file, int frames);

/// A row of truth.csv, how the picture of a simulated clip truly moves: `frame,dx,dy,da,x,y,a`.
struct TrueMotion {
    Trajectory step;  ///< Since the previous frame.
    Trajectory sum;   ///< The plain sum of these so far.
};

std::string truthCsv(std::span<const TrueMotion> truth);
/// @return where the picture stands in each frame, relative to the first: the sums.
std::vector<Trajectory> parseTruthCsv(std::string_view text);
/// @param frames  number of rows to expect; of a clip that went on when the sweep was full, the
/// first ones.
std::vector<Trajectory> readTruthCsv(const std::filesystem::path& file, int frames);

/// refined.csv, the motion of the picture as the refinement measured it:
/// `frame,dx,dy,da,ds,measured`, since the frame before, about the picture's centre, pixels of the
/// full-size frame, x right, y down, radians, natural logarithm of the scale. Row 0 is zero, and so
/// is what is not measured. The quality of a motion is not kept.
std::string motionCsv(std::span<const refine::FrameMotion> motions);
/// @param size  of the frames, whose centre the motions are about.
std::vector<refine::FrameMotion> parseMotionCsv(std::string_view text, FrameSize size);
/// @param frames  number of rows to expect.
std::vector<refine::FrameMotion> readMotionCsv(const std::filesystem::path& file, FrameSize size,
                                               int frames);

}  // namespace orbitwalk::tool
