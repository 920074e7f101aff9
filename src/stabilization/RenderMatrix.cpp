#include "stabilization/RenderMatrix.h"

#include <cmath>
#include <opencv2/core.hpp>

#include "common/FixedPoint.h"
#include "stabilization/TransposeInverse.h"

namespace orbitwalk {

namespace {

/// A rigid motion's determinant is 1, so half of that tells it from a matrix that lost its rank.
bool isInvertible(const FixedMatrix& fixed) {
    double m[9];
    for (int i = 0; i < 9; ++i)
        m[i] = fixed[i] / 1000000.0;
    const double determinant = m[0] * (m[4] * m[8] - m[5] * m[7]) -
                               m[1] * (m[3] * m[8] - m[5] * m[6]) +
                               m[2] * (m[3] * m[7] - m[4] * m[6]);
    return determinant > 0.5;
}

}  // namespace

cv::Mat rigidMatrix(const Trajectory& transform) {
    cv::Mat matrix = cv::Mat::zeros(3, 3, CV_64F);
    const double c = std::cos(transform.a);
    const double s = std::sin(transform.a);
    matrix.at<double>(0, 0) = c;
    matrix.at<double>(0, 1) = -s;
    matrix.at<double>(0, 2) = transform.x;
    matrix.at<double>(1, 0) = s;
    matrix.at<double>(1, 1) = c;
    matrix.at<double>(1, 2) = transform.y;
    matrix.at<double>(2, 2) = 1;
    return matrix;
}

FixedMatrix renderMatrix(const cv::Mat& rigid) {
    if (!cv::checkRange(rigid))
        return kIdentityMatrix;
    Matrix3 rows;
    for (int i = 0; i < 9; ++i)
        rows[i / 3][i % 3] = rigid.at<double>(i / 3, i % 3);
    const Matrix3 inverse = inverseOfTranspose(rows);
    FixedMatrix fixed{};
    for (int i = 0; i < 9; ++i)
        fixed[i] = toFixedPoint(inverse[i / 3][i % 3]);
    return isInvertible(fixed) ? fixed : kIdentityMatrix;
}

}  // namespace orbitwalk
