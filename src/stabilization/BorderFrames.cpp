#include "stabilization/BorderFrames.h"

#include <algorithm>
#include <cstdint>

#include "common/FixedPoint.h"

namespace orbitwalk {

namespace {

float difference(int from, int subtracted) {
    return static_cast<float>(std::int64_t{from} - subtracted);
}

/// A value >= 0 is limited to positiveLimit, the magnitude of a negative one to negativeLimit.
float ABS_POS_NEG(float value, float positiveLimit, float negativeLimit) {
    if (value >= 0)
        return value > positiveLimit ? positiveLimit : value;
    return -value > negativeLimit ? -negativeLimit : value;
}

/// Limits to the low margin on the positive side and to the high margin on the negative one.
BorderValues limited(BorderValues values, int min, int max, int length) {
    for (float& value : values)
        value = ABS_POS_NEG(value, static_cast<float>(min), difference(length, max));
    return values;
}

BorderValues remapped(BorderValues values, const Remap& remap, float anchor) {
    for (float& value : values)
        value = remap.map(value, anchor);
    return values;
}

BorderValues lessOffset(BorderValues values, double offset) {
    for (float& value : values)
        value -= static_cast<float>(offset);
    return values;
}

void extrapolate(BorderFit& fit, int firstK, int step) {
    for (int i = 0; i < kBorderFrames; ++i) {
        fit.extrapolatedX[i] = fit.lineX.at(firstK + step * i);
        fit.extrapolatedY[i] = fit.lineY.at(firstK + step * i);
    }
}

BorderValues farthestFirst(BorderValues values) {
    std::reverse(values.begin(), values.end());
    return values;
}

/// From the farthest extrapolated value to the sweep's first point, onto the way from the margin.
Remap startRemap(const BorderValues& values, double firstPoint, std::optional<float> margin) {
    const auto anchor = static_cast<float>(truncateToInt32(firstPoint));
    return {margin ? values.front() : 0.0f, anchor, margin.value_or(anchor), anchor};
}

/// From the sweep's last point to the farthest extrapolated value, onto the way to the margin.
Remap endRemap(const BorderValues& values, double lastPoint, double joint,
               std::optional<float> margin) {
    const auto anchor = static_cast<float>(joint);
    return {static_cast<float>(lastPoint), values.back(), anchor, margin.value_or(anchor)};
}

}  // namespace

LineFit fitLine(std::span<const Trajectory> points, double Trajectory::*axis) {
    LineFit fit;
    for (std::size_t k = 0; k < points.size(); ++k) {
        const auto abscissa = static_cast<float>(k);
        const double value = points[k].*axis;
        const auto x = static_cast<float>(k == 0 ? truncateToInt32(value) : value);
        fit.sumK += abscissa;
        fit.sumK2 += abscissa * abscissa;
        fit.sumX += x;
        fit.sumKX += abscissa * x;
    }
    const auto count = static_cast<float>(points.size());
    fit.slopeNumerator = count * fit.sumKX - fit.sumK * fit.sumX;
    fit.slopeDenominator = count * fit.sumK2 - fit.sumK * fit.sumK;
    fit.slope = fit.slopeNumerator / fit.slopeDenominator;
    fit.intercept = (fit.sumX - fit.slope * fit.sumK) / count;
    return fit;
}

float Remap::map(float value, float anchor) const {
    if (oldEnd == oldStart)
        return anchor;
    return newStart + (newEnd - newStart) * (value - oldStart) / (oldEnd - oldStart);
}

std::optional<float> borderMargin(const BorderGeometry& geometry, bool atStart) {
    const bool known = (geometry.isPortrait() || geometry.isLandscape()) &&
                       (geometry.captureDirection == 1 || geometry.captureDirection == 2) &&
                       (geometry.flip == 0 || geometry.flip == 1);
    if (!known)
        return std::nullopt;
    // Turning the sweep around, mirroring the preview and changing ends each swap the margins.
    bool low = geometry.orientation == 0 || geometry.orientation == 270;
    low ^= geometry.captureDirection == 2;
    low ^= geometry.flip == 1;
    low ^= !atStart;
    if (geometry.isPortrait())
        return low ? static_cast<float>(geometry.crop.minY)
                   : difference(geometry.crop.maxY, geometry.size.height);
    return low ? static_cast<float>(geometry.crop.minX)
               : difference(geometry.crop.maxX, geometry.size.width);
}

BorderFit fitStartFrames(std::span<const Trajectory> smoothPath, const BorderGeometry& geometry) {
    const auto window = smoothPath.first(std::min(kFittedPoints, smoothPath.size()));
    BorderFit fit;
    fit.lineX = fitLine(window, &Trajectory::x);
    fit.lineY = fitLine(window, &Trajectory::y);
    extrapolate(fit, -1, -1);
    const BorderValues x = farthestFirst(fit.extrapolatedX);
    const BorderValues y = farthestFirst(fit.extrapolatedY);
    const auto margin = borderMargin(geometry, true);
    const auto& [minX, maxX, minY, maxY] = geometry.crop;
    if (geometry.isPortrait()) {
        fit.remap = startRemap(y, window[0].y, margin);
        fit.x = limited(x, minX, maxX, geometry.size.width);
        fit.y = remapped(y, fit.remap, fit.remap.newEnd);
    } else if (geometry.isLandscape()) {
        fit.remap = startRemap(x, window[0].x, margin);
        fit.x = remapped(x, fit.remap, fit.remap.newEnd);
        fit.y = limited(y, minY, maxY, geometry.size.height);
    }
    return fit;
}

BorderFit fitEndFrames(std::span<const Trajectory> smoothPath, const Trajectory& lastTransform,
                       const BorderGeometry& geometry) {
    const auto window = smoothPath.last(std::min(kFittedPoints, smoothPath.size()));
    BorderFit fit;
    fit.lineX = fitLine(window, &Trajectory::x);
    fit.lineY = fitLine(window, &Trajectory::y);
    extrapolate(fit, kFittedPoints, 1);
    const BorderValues& x = fit.extrapolatedX;
    const BorderValues& y = fit.extrapolatedY;
    const Trajectory& last = window.back();
    const auto margin = borderMargin(geometry, false);
    const auto& [minX, maxX, minY, maxY] = geometry.crop;
    if (geometry.isPortrait()) {
        fit.remap = endRemap(y, last.y, lastTransform.y, margin);
        fit.x = limited(lessOffset(x, last.x), minX, maxX, geometry.size.width);
        fit.y = remapped(y, fit.remap, fit.remap.newStart);
    } else if (geometry.isLandscape()) {
        fit.remap = endRemap(x, last.x, lastTransform.x, margin);
        fit.x = remapped(x, fit.remap, fit.remap.newStart);
        fit.y = limited(lessOffset(y, last.y), minY, maxY, geometry.size.height);
    }
    return fit;
}

}  // namespace orbitwalk
