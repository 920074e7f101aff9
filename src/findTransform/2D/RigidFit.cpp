#include "findTransform/2D/RigidFit.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <utility>

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

/// Unknowns (c, s, tx, ty).
void fitSimilarity(const cv::Point2f* a, const cv::Point2f* b, int count, double* m) {
    double S00 = 0, S02 = 0, S03 = 0, T0 = 0, T1 = 0, T2 = 0, T3 = 0;
    for (int i = 0; i < count; ++i) {
        const auto [ax, ay] = std::pair(a[i].x, a[i].y);
        const auto [bx, by] = std::pair(b[i].x, b[i].y);
        S00 += ax * ax + ay * ay;
        S02 += ax;
        S03 += ay;
        T0 += ax * bx + ay * by;
        T1 += ax * by - ay * bx;
        T2 += bx;
        T3 += by;
    }
    const double n = count;
    const cv::Matx44d A(S00, 0, S02, S03,   //
                        0, S00, -S03, S02,  //
                        S02, -S03, n, 0,    //
                        S03, S02, 0, n);
    const cv::Vec4d T(T0, T1, T2, T3);
    cv::Vec4d x;
    cv::solve(A, T, x, cv::DECOMP_EIG);
    const double rows[] = {x[0], -x[1], x[2], x[1], x[0], x[3]};
    std::copy(std::begin(rows), std::end(rows), m);
}

/// The two rows share one matrix: each is a fit of (x, y, 1) to one coordinate of b.
void fitAffine(const cv::Point2f* a, const cv::Point2f* b, int count, double* m) {
    cv::Matx33d A = cv::Matx33d::zeros();
    cv::Matx<double, 3, 2> T = cv::Matx<double, 3, 2>::zeros();
    for (int i = 0; i < count; ++i) {
        const float from[] = {a[i].x, a[i].y, 1.0f};
        const float to[] = {b[i].x, b[i].y};
        for (int row = 0; row < 3; ++row) {
            for (int col = 0; col < 3; ++col)
                A(row, col) += from[row] * from[col];
            for (int col = 0; col < 2; ++col)
                T(row, col) += from[row] * to[col];
        }
    }
    cv::Matx<double, 3, 2> x;
    cv::solve(A, T, x, cv::DECOMP_EIG);
    const cv::Matx23d rows = x.t();
    std::copy(std::begin(rows.val), std::end(rows.val), m);
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

void getRTMatrix(const cv::Point2f* a, const cv::Point2f* b, int count, cv::Mat& M,
                 bool fullAffine) {
    if (!M.isContinuous())
        cv::error(cv::Error::StsAssert, "M.isContinuous()",
                  "void getRTMatrix(const Point2f*, const Point2f*, int, cv::Mat&, bool)", __FILE__,
                  __LINE__);
    if (fullAffine)
        fitAffine(a, b, count, M.ptr<double>());
    else
        fitSimilarity(a, b, count, M.ptr<double>());
}

}  // namespace orbitwalk
