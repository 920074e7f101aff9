#include "stabilization/CameraPath.h"

#include <algorithm>
#include <cmath>

namespace orbitwalk {

std::vector<Trajectory> rebuildPath(std::span<const Trajectory> transforms) {
    std::vector<Trajectory> path;
    path.reserve(transforms.size());
    Trajectory sum;
    for (const Trajectory& transform : transforms)
        path.push_back(sum += transform);
    return path;
}

std::vector<Trajectory> pathOneFrameLate(std::span<const Trajectory> path,
                                         std::span<const Trajectory> transforms) {
    std::vector<Trajectory> late;
    late.reserve(path.size());
    for (std::size_t i = 0; i < path.size(); ++i)
        late.push_back(path[i] - transforms[i]);
    return late;
}

Trajectory correctedTransform(const Trajectory& transform, const Trajectory& smoothPoint,
                              const Trajectory& pathPoint) {
    return transform + (smoothPoint - pathPoint);
}

CorrectedTransforms correctTransforms(std::span<const Trajectory> transforms,
                                      std::span<const Trajectory> path,
                                      std::span<const Trajectory> smoothPath) {
    const std::size_t count = std::min({transforms.size(), path.size(), smoothPath.size()});
    CorrectedTransforms corrected;
    corrected.transforms.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const Trajectory correction = smoothPath[i] - path[i];
        const bool searching = count > 10 && i <= 4 && corrected.crossOverPoint == 0;
        if (searching && (std::abs(correction.x) >= std::abs(transforms[i].x) ||
                          std::abs(correction.y) >= std::abs(transforms[i].y)))
            corrected.crossOverPoint = static_cast<int>(i);
        corrected.transforms.push_back(correctedTransform(transforms[i], smoothPath[i], path[i]));
    }
    return corrected;
}

}  // namespace orbitwalk
