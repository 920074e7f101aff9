#include "stabilization/CameraPath.h"

#include <algorithm>
#include <cmath>

namespace orbitwalk {

namespace {

Trajectory reflected(const Trajectory& end, const Trajectory& inside) {
    return {2 * end.x - inside.x, 2 * end.y - inside.y, 2 * end.a - inside.a};
}

Trajectory sample(std::span<const Trajectory> path, int k) {
    const int last = static_cast<int>(path.size()) - 1;
    if (k > last)
        return reflected(path[last], path[2 * last - k]);
    if (k < 0)
        return reflected(path[0], path[-k]);
    return path[k];
}

Trajectory weightedMean(std::span<const Trajectory> path, int center,
                        std::span<const double> kernel) {
    const int radius = static_cast<int>(kernel.size() / 2);
    Trajectory sum;
    double weights = 0;
    for (int j = -radius; j <= radius; ++j) {
        const double weight = kernel[j + radius];
        const Trajectory point = sample(path, center + j);
        sum += {weight * point.x, weight * point.y, weight * point.a};
        weights += weight;
    }
    if (weights != 0)
        sum = {sum.x / weights, sum.y / weights, sum.a / weights};
    return sum;
}

}  // namespace

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

std::vector<Trajectory> gaussianSmooth(std::span<const Trajectory> path, int radius) {
    std::vector<Trajectory> smooth;
    if (radius < 1 || path.empty())
        return smooth;
    const int taps = std::min(radius, static_cast<int>(path.size()) - 1);
    std::vector<double> kernel;
    for (int j = -taps; j <= taps; ++j) {
        const double z = j / (0.5 * taps);
        kernel.push_back(std::exp(-0.5 * (z * z)));
    }
    smooth.reserve(path.size());
    for (int i = 0; i < static_cast<int>(path.size()); ++i)
        smooth.push_back(weightedMean(path, i, kernel));
    return smooth;
}

}  // namespace orbitwalk
