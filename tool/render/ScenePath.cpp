#include "render/ScenePath.h"

#include <algorithm>
#include <cmath>

namespace orbitwalk::tool {

namespace {

Affine affineOf(const SimilarityTransform& map) {
    const PicturePoint origin = map({0, 0});
    const PicturePoint xAxis = map.linear({1, 0});
    return {xAxis.x, -xAxis.y, origin.x, xAxis.y, xAxis.x, origin.y};
}

std::vector<Affine> framesFromScene(std::span<const refine::FrameMotion> motions) {
    std::vector<Affine> maps;
    Affine map, motion;
    for (std::size_t i = 0; i < motions.size(); ++i) {
        if (motions[i].measured)
            motion = affineOf(motions[i].motion);
        if (i > 0)
            map = motion * map;
        maps.push_back(map);
    }
    return maps;
}

double motionChange(std::span<const PicturePoint> places, std::size_t middle) {
    const PicturePoint change =
        (places[middle + 1] - places[middle]) - (places[middle] - places[middle - 1]);
    return std::hypot(change.x, change.y);
}

double meanMotionChange(std::span<const PicturePoint> places) {
    double squares = 0;
    for (std::size_t i = 1; i + 1 < places.size(); ++i)
        squares += std::pow(motionChange(places, i), 2);
    return std::sqrt(squares / static_cast<double>(places.size() - 2));
}

}  // namespace

std::vector<Affine> framesFromScene(std::span<const SweepRow> path) {
    std::vector<Affine> maps;
    Affine map;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (i > 0) {
            const Trajectory motion = path[i].position - path[i - 1].position;
            const double c = std::cos(motion.a);
            const double s = std::sin(motion.a);
            map = Affine{c, -s, motion.x, s, c, motion.y} * map;
        }
        maps.push_back(map);
    }
    return maps;
}

std::vector<Affine> framesFromScene(const Sweep& sweep) {
    return sweep.refinement ? framesFromScene(sweep.refinement->motions)
                            : framesFromScene(requirePath(sweep));
}

std::optional<BorderJump> borderJump(std::span<const Shot> shots, std::span<const Affine> frames,
                                     FrameSize size) {
    const PicturePoint centre = frameCentre(size);
    std::vector<PicturePoint> shown, recorded;
    for (const Shot& shot : shots)
        shown.push_back((inverse(frames[shot.frame]) * shot.frameFromPicture)(centre));
    for (int i = shots.front().frame; i <= shots.back().frame; ++i)
        recorded.push_back(inverse(frames[i])(centre));
    const bool hasBorders =
        std::ranges::any_of(shots, [](const Shot& shot) { return shot.kind != ShotKind::Sweep; });
    if (!hasBorders || recorded.size() < 3)
        return std::nullopt;
    BorderJump result;
    result.shake = meanMotionChange(recorded);
    for (std::size_t i = 1; i + 1 < shots.size(); ++i)
        if (shots[i - 1].kind != shots[i + 1].kind)
            result.join = std::max(result.join, motionChange(shown, i));
    return result;
}

}  // namespace orbitwalk::tool
