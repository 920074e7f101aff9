#include "evaluate/PathError.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace orbitwalk::tool {

namespace {

constexpr double kDegrees = 180 / std::numbers::pi;

std::vector<TruthRow> positionErrors(std::span<const SweepRow> measured,
                                     std::span<const TruthRow> truth) {
    const SweepRow& m0 = measured.front();
    const TruthRow& t0 = truth.front();
    std::vector<TruthRow> errors;
    for (std::size_t k = 0; k < measured.size(); ++k) {
        const auto difference = [](double m, double mFirst, double t, double tFirst) {
            return (m - mFirst) - (t - tFirst);
        };
        errors.push_back({difference(measured[k].x, m0.x, truth[k].x, t0.x),
                          difference(measured[k].y, m0.y, truth[k].y, t0.y),
                          difference(measured[k].a, m0.a, truth[k].a, t0.a) * kDegrees});
    }
    return errors;
}

std::vector<TruthRow> steps(std::span<const TruthRow> rows) {
    std::vector<TruthRow> differences;
    for (std::size_t k = 1; k < rows.size(); ++k)
        differences.push_back(
            {rows[k].x - rows[k - 1].x, rows[k].y - rows[k - 1].y, rows[k].a - rows[k - 1].a});
    return differences;
}

AxisError axisError(std::span<const TruthRow> errors, double TruthRow::*axis) {
    AxisError result;
    for (const TruthRow& error : errors) {
        result.rms += error.*axis * (error.*axis);
        result.max = std::max(result.max, std::abs(error.*axis));
    }
    if (!errors.empty())
        result.rms = std::sqrt(result.rms / static_cast<double>(errors.size()));
    return result;
}

double pathLength(std::span<const TruthRow> truth) {
    double length = 0;
    for (const TruthRow& step : steps(truth))
        length += std::hypot(step.x, step.y);
    return length;
}

/// Unit vector from the first position to the last; to the right when the path comes back.
TruthRow sweepLine(std::span<const TruthRow> truth) {
    const double x = truth.back().x - truth.front().x;
    const double y = truth.back().y - truth.front().y;
    const double length = std::hypot(x, y);
    return length > 0 ? TruthRow{x / length, y / length, 0} : TruthRow{1, 0, 0};
}

}  // namespace

PathError pathError(std::span<const SweepRow> measured, std::span<const TruthRow> truth) {
    const std::vector<TruthRow> errors = positionErrors(measured, truth);
    const std::vector<TruthRow> stepErrors = steps(errors);
    PathError result;
    result.x = axisError(errors, &TruthRow::x);
    result.y = axisError(errors, &TruthRow::y);
    result.angle = axisError(errors, &TruthRow::a);
    result.stepX = axisError(stepErrors, &TruthRow::x);
    result.stepY = axisError(stepErrors, &TruthRow::y);
    result.stepAngle = axisError(stepErrors, &TruthRow::a);
    result.travelled = pathLength(truth);
    if (result.travelled > 0) {
        const TruthRow along = sweepLine(truth);
        const TruthRow& last = errors.back();
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
