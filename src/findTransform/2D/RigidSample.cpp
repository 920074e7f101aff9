#include "findTransform/2D/RigidSample.h"

#include <cfloat>
#include <cmath>

namespace orbitwalk {
namespace {

constexpr int kMaxDraws = 500;
/// Sine of the angle at the first point under which three points count as collinear.
constexpr double kCollinearSine = 0.01;

using PointSpan = std::span<const cv::Point2f>;

bool coincide(cv::Point2f p, cv::Point2f q) {
    return std::abs(p.x - q.x) + std::abs(p.y - q.y) < FLT_EPSILON;
}

bool areCollinear(PointSpan points, const SampleIndices& sample) {
    const cv::Point2d p0 = points[sample[0]];
    const cv::Point2d d1 = cv::Point2d(points[sample[1]]) - p0;
    const cv::Point2d d2 = cv::Point2d(points[sample[2]]) - p0;
    return std::abs(d1.x * d2.y - d1.y * d2.x) < kCollinearSine *
                                                     std::sqrt(d1.x * d1.x + d1.y * d1.y) *
                                                     std::sqrt(d2.x * d2.x + d2.y * d2.y);
}

/// Whether the index drawn last goes together with the earlier ones.
bool suits(const SampleIndices& sample, int last, PointSpan a, PointSpan b) {
    const int i = sample[last];
    for (int k = 0; k < last; ++k) {
        const int earlier = sample[k];
        if (i == earlier || coincide(a[i], a[earlier]) || coincide(b[i], b[earlier]))
            return false;
    }
    return last < 2 || !(areCollinear(a, sample) || areCollinear(b, sample));
}

}  // namespace

std::optional<SampleIndices> drawSample(cv::RNG& random, PointSpan a, PointSpan b) {
    const auto count = static_cast<unsigned>(a.size());
    SampleIndices sample{};
    for (int k = 0; k < 3; ++k) {
        int draws = 0;
        do {
            if (draws++ == kMaxDraws)
                return std::nullopt;
            sample[k] = static_cast<int>(random.next() % count);
        } while (!suits(sample, k, a, b));
    }
    return sample;
}

}  // namespace orbitwalk
