#include "evaluate/SweepFacts.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "evaluate/ResidualMotion.h"
#include "orbitwalk/GeometryOpenCV.h"
#include "render/FramePlanes.h"

namespace orbitwalk::tool {

namespace {

void addCorrection(const Shot& shot, cv::Size size, SweepFacts& facts) {
    const Trajectory moved = correctionOf(shot.frameFromPicture, fromCv(size));
    facts.meanCorrectionX += moved.x;
    facts.meanCorrectionY += moved.y;
    facts.largestCorrection = std::max(facts.largestCorrection, std::hypot(moved.x, moved.y));
    facts.largestTurn = std::max(facts.largestTurn, std::abs(moved.a) * 180 / std::numbers::pi);
}

/// Motion of the picture between two frames of the path.
SimilarityTransform motionBetween(std::span<const SweepRow> path, int from, int to,
                                  FrameSize size) {
    SimilarityTransform whole{0, 0, 0, 0, measuringOrigin(size)};
    for (int k = from + 1; k <= to; ++k) {
        const Trajectory step = path[k].position - path[k - 1].position;
        whole = SimilarityTransform{step.x, step.y, step.a, 0, whole.about} * whole;
    }
    return whole;
}

FrameMotion atCentre(const SimilarityTransform& map, FrameSize size) {
    const SimilarityTransform motion = map.takenAbout(frameCentre(size));
    return {motion.x, motion.y, motion.angle * 180 / std::numbers::pi};
}

}  // namespace

std::optional<double> residualShare(const RecordReader& record, std::span<const SweepRow> path) {
    const FrameSize size{record.width(), record.height()};
    const auto correction = [&](const Shot& shot) {
        const Trajectory moved = correctionOf(shot.frameFromPicture, size);
        return SimilarityTransform{moved.x, moved.y, moved.a, 0, frameCentre(size)};
    };
    std::vector<std::optional<FrameMotion>> recorded, corrected;
    const std::vector<Shot> shots = playlist(record, false);
    for (std::size_t k = 1; k < shots.size(); ++k) {
        const auto motion = motionBetween(path, shots[k - 1].frame, shots[k].frame, size);
        recorded.push_back(atCentre(motion, size));
        corrected.push_back(
            atCentre(correction(shots[k]) * motion * correction(shots[k - 1]).inverse(), size));
    }
    const auto before = residualMotion(recorded), after = residualMotion(corrected);
    if (!before || before->shift() == 0)
        return std::nullopt;
    return after->shift() / before->shift();
}

SweepFacts sweepFacts(const RecordReader& record) {
    const cv::Size size(record.width(), record.height());
    const CropRectangle crop = record.crop();
    SweepFacts facts;
    facts.frames = record.frameCount();
    facts.keptView = static_cast<double>(crop.width) * crop.height / size.area();
    for (const Shot& shot : playlist(record)) {
        const std::int64_t missing = missingPixels(size, shot.frameFromOutput);
        if (shot.kind != ShotKind::Sweep) {
            facts.missingBorderPixels += missing;
            continue;
        }
        facts.missingPixels += missing;
        ++facts.renderedFrames;
        addCorrection(shot, size, facts);
    }
    if (facts.renderedFrames > 0) {
        facts.meanCorrectionX /= facts.renderedFrames;
        facts.meanCorrectionY /= facts.renderedFrames;
    }
    return facts;
}

}  // namespace orbitwalk::tool
