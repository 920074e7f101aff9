#include "motion/SimilarityFit.h"

#include <algorithm>
#include <cmath>

namespace orbitwalk::refine {

namespace {

constexpr int kDistanceSteps = 30;
constexpr int kFadingSteps = 20;
/// Median distances at which a weight begins to fade.
constexpr double kCutInMedians = 5;
/// The cut is never below this many floors.
constexpr double kCutInFloors = 2;

double distance(const SimilarityTransform& motion, const Track& track) {
    const PicturePoint off = motion(track.from) - track.to;
    return std::hypot(off.x, off.y);
}

/// Weighted least squares in closed form. @return nothing changed when the points coincide.
SimilarityTransform solved(std::span<const Track> tracks, const std::vector<double>& weights,
                           const SimilarityTransform& before) {
    double sum = 0;
    PicturePoint from, to;
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        const double w = weights[i];
        sum += w;
        from = from + PicturePoint{w * tracks[i].from.x, w * tracks[i].from.y};
        to = to + PicturePoint{w * tracks[i].to.x, w * tracks[i].to.y};
    }
    if (!(sum > 0))
        return before;
    from = {from.x / sum, from.y / sum};
    to = {to.x / sum, to.y / sum};
    double dot = 0, cross = 0, square = 0;
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        const PicturePoint p = tracks[i].from - from;
        const PicturePoint q = tracks[i].to - to;
        dot += weights[i] * (p.x * q.x + p.y * q.y);
        cross += weights[i] * (p.x * q.y - p.y * q.x);
        square += weights[i] * (p.x * p.x + p.y * p.y);
    }
    const double scale = std::hypot(dot, cross) / square;
    if (!(square > 0) || !(scale > 0))
        return before;
    SimilarityTransform motion{0, 0, std::atan2(cross, dot), std::log(scale), {}};
    const PicturePoint shift = to - motion.linear(from);
    motion.x = shift.x;
    motion.y = shift.y;
    return motion;
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// 1 up to the cut, 0 from twice the cut, smooth between.
double fading(double r, double cut) {
    const double t = std::clamp(r / cut - 1, 0.0, 1.0);
    return (1 - t * t) * (1 - t * t);
}

class Fitter {
  public:
    Fitter(std::span<const Track> tracks, double floor)
        : mTracks(tracks), mFloor(floor), mDistances(tracks.size()), mWeights(tracks.size(), 1) {}

    SimilarityFit run() {
        for (int step = 0; step < kDistanceSteps; ++step)
            improve([](double) { return 1.0; });
        for (int step = 0; step < kFadingSteps; ++step) {
            measure();
            const double cut = std::max(kCutInMedians * median(mDistances), kCutInFloors * mFloor);
            improve([cut](double r) { return fading(r, cut); });
        }
        return {mMotion, mWeights, residual()};
    }

  private:
    void measure() {
        std::ranges::transform(mTracks, mDistances.begin(),
                               [&](const Track& track) { return distance(mMotion, track); });
    }

    template <typename Factor>
    void improve(const Factor& factor) {
        mMotion = solved(mTracks, mWeights, mMotion);
        measure();
        std::ranges::transform(mDistances, mWeights.begin(),
                               [&](double r) { return factor(r) / std::max(r, mFloor); });
    }

    double residual() const {
        double squares = 0;
        int counted = 0;
        for (std::size_t i = 0; i < mTracks.size(); ++i)
            if (mWeights[i] > 0) {
                squares += mDistances[i] * mDistances[i];
                ++counted;
            }
        return counted > 0 ? std::sqrt(squares / counted) : 0;
    }

    std::span<const Track> mTracks;
    double mFloor;
    SimilarityTransform mMotion;
    std::vector<double> mDistances;
    std::vector<double> mWeights;
};

}  // namespace

SimilarityFit fitSimilarity(std::span<const Track> tracks, double floor) {
    if (tracks.size() < 2)
        return {{}, std::vector<double>(tracks.size(), 0), 0};
    return Fitter(tracks, floor).run();
}

}  // namespace orbitwalk::refine
