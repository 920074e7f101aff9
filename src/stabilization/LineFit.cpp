#include "stabilization/LineFit.h"

#include "common/FixedPoint.h"

namespace orbitwalk {

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

}  // namespace orbitwalk
