#pragma once

#include <span>
#include <vector>

#include "orbitwalk/Geometry.h"

namespace orbitwalk {

/// Running sum of frame-to-frame transforms: one point per frame, point 0 equal to transform 0.
std::vector<Trajectory> rebuildPath(std::span<const Trajectory> transforms);

/// The path one frame late: the point of the frame before, zero (up to rounding) for frame 0. Taken
/// as the smoothed path, it makes every corrected transform vanish: no correction at all.
/// @param path, transforms  equally long.
std::vector<Trajectory> pathOneFrameLate(std::span<const Trajectory> path,
                                         std::span<const Trajectory> transforms);

/// Transform that moves a frame by its own motion and on to the smoothed path.
Trajectory correctedTransform(const Trajectory& transform, const Trajectory& smoothPoint,
                              const Trajectory& pathPoint);

struct CorrectedTransforms {
    std::vector<Trajectory> transforms;
    /// First of frames 1 to 4 whose correction is at least as large as its own motion in x or in y;
    /// 0: none, or ten frames or fewer. A hit at frame 0 stores 0 and leaves the search open.
    int crossOverPoint = 0;
};

/// Frame-to-frame transforms of the smoothed path.
/// @param transforms, path, smoothPath  equally long; a shorter one limits the result.
CorrectedTransforms correctTransforms(std::span<const Trajectory> transforms,
                                      std::span<const Trajectory> path,
                                      std::span<const Trajectory> smoothPath);

/// Gaussian average of each path point over its neighbours, sigma half the radius. Beyond its ends
/// the path goes on as its point reflection about the last (first) point, which continues its
/// slope.
///
/// @param radius  taps on either side, limited to the path's length - 1; below 1 gives no points.
/// @return as many points as the path has. A path of one point gives not-a-number in every
///         component: its kernel has no width.
std::vector<Trajectory> gaussianSmooth(std::span<const Trajectory> path, int radius);

}  // namespace orbitwalk
