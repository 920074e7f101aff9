#pragma once

#include <optional>
#include <span>
#include <vector>

#include "sweep/Playlist.h"
#include "sweep/Sweep.h"

/// Where the frames and pictures of a sweep lie in the scene that they sweep across. Scene
/// coordinates are pixels of the first frame. A frame moves with the picture's motion from frame to
/// frame; a corrected picture lies where its matrix cuts it from its frame. So the pictures of a
/// sweep lie along minus the smoothed path, and the same thing lies at the same place in all of
/// them.
namespace orbitwalk::tool {

/// Map from the scene to each frame: the motions between the rows, one after the other, each a
/// rotation about the frame's origin followed by an offset.
std::vector<Affine> framesFromScene(std::span<const SweepRow> path);

/// The same by the motions that the sweep's record was planned from: the engine's or, where the
/// record is that of a refinement, the refinement's (an unmeasured one repeats the last).
/// @throws ToolError: see requirePath.
std::vector<Affine> framesFromScene(const Sweep& sweep);

/// Changes of motion from one picture to the next, at the pictures' centres. Pixels.
struct BorderJump {
    double join = 0;   ///< The largest where border frames join the sweep, as shown.
    double shake = 0;  ///< Of the sweep's frames as recorded, root mean square.
};

/// @param shots   as shown.
/// @param frames  map from the scene to each frame.
/// @return nothing without border frames, or with fewer than three frames.
std::optional<BorderJump> borderJump(std::span<const Shot> shots, std::span<const Affine> frames,
                                     FrameSize size);

}  // namespace orbitwalk::tool
