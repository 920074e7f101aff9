#include "evaluate/SweepFacts.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "orbitwalk/GeometryOpenCV.h"
#include "render/FramePlanes.h"
#include "sweep/Degrees.h"
#include "sweep/RecordFacts.h"

namespace orbitwalk::tool {

namespace {

std::vector<Trajectory> positionErrors(std::span<const SweepRow> measured,
                                       std::span<const Trajectory> truth) {
    const Trajectory& m0 = measured.front().position;
    const Trajectory& t0 = truth.front();
    std::vector<Trajectory> errors;
    for (std::size_t k = 0; k < measured.size(); ++k) {
        Trajectory error = (measured[k].position - m0) - (truth[k] - t0);
        error.a = degrees(error.a);
        errors.push_back(error);
    }
    return errors;
}

std::vector<Trajectory> steps(std::span<const Trajectory> rows) {
    std::vector<Trajectory> differences;
    for (std::size_t k = 1; k < rows.size(); ++k)
        differences.push_back(rows[k] - rows[k - 1]);
    return differences;
}

AxisError axisError(std::span<const Trajectory> errors, double Trajectory::*axis) {
    AxisError result;
    for (const Trajectory& error : errors) {
        result.rms += error.*axis * (error.*axis);
        result.max = std::max(result.max, std::abs(error.*axis));
    }
    if (!errors.empty())
        result.rms = std::sqrt(result.rms / static_cast<double>(errors.size()));
    return result;
}

double pathLength(std::span<const Trajectory> truth) {
    double length = 0;
    for (const Trajectory& step : steps(truth))
        length += std::hypot(step.x, step.y);
    return length;
}

/// Unit vector from the first position to the last; to the right when the path comes back.
Trajectory sweepLine(std::span<const Trajectory> truth) {
    const double x = truth.back().x - truth.front().x;
    const double y = truth.back().y - truth.front().y;
    const double length = std::hypot(x, y);
    return length > 0 ? Trajectory{x / length, y / length, 0} : Trajectory{1, 0, 0};
}

void addCorrection(const Shot& shot, cv::Size size, SweepFacts& facts) {
    const Trajectory moved = correctionOf(shot.frameFromPicture, fromCv(size));
    facts.meanCorrectionX += moved.x;
    facts.meanCorrectionY += moved.y;
    facts.largestCorrection = std::max(facts.largestCorrection, std::hypot(moved.x, moved.y));
    facts.largestTurn = std::max(facts.largestTurn, degrees(std::abs(moved.a)));
}

}  // namespace

SweepFacts sweepFacts(const RecordReader& record) {
    const cv::Size size(record.width(), record.height());
    SweepFacts facts;
    facts.frames = record.frameCount();
    facts.keptView = viewKeptBy(record);
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

PathError pathError(std::span<const SweepRow> measured, std::span<const Trajectory> truth) {
    const std::vector<Trajectory> errors = positionErrors(measured, truth);
    const std::vector<Trajectory> stepErrors = steps(errors);
    PathError result;
    result.x = axisError(errors, &Trajectory::x);
    result.y = axisError(errors, &Trajectory::y);
    result.angle = axisError(errors, &Trajectory::a);
    result.stepX = axisError(stepErrors, &Trajectory::x);
    result.stepY = axisError(stepErrors, &Trajectory::y);
    result.stepAngle = axisError(stepErrors, &Trajectory::a);
    result.travelled = pathLength(truth);
    if (result.travelled > 0) {
        const Trajectory along = sweepLine(truth);
        const Trajectory& last = errors.back();
        const double scale = 100 / result.travelled;
        result.driftAlong = (last.x * along.x + last.y * along.y) * scale;
        result.driftAcross = (last.y * along.x - last.x * along.y) * scale;
    }
    result.repeatedShare =
        static_cast<double>(std::ranges::count(measured, true, &SweepRow::repeated)) /
        static_cast<double>(measured.size());
    return result;
}

}  // namespace orbitwalk::tool
