#include "evaluate/SweepFacts.h"

#include <algorithm>
#include <cmath>
#include <numbers>

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

}  // namespace

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
