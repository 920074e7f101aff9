#include "findTransform/2D/RigidLeastSquares.h"

#include <algorithm>
#include <utility>

namespace orbitwalk {
namespace {

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
