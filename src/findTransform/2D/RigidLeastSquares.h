#pragma once

#include <opencv2/core.hpp>

namespace orbitwalk {

/// Least-squares transform of the points a onto the points b, by the normal equations. Products are
/// single precision, sums double.
/// @param M           2x3 CV_64F, continuous; receives the transform.
/// @param fullAffine  false: [c -s tx; s c ty]; true: all six entries are free.
/// @throws cv::Exception when M is not continuous.
void getRTMatrix(const cv::Point2f* a, const cv::Point2f* b, int count, cv::Mat& M,
                 bool fullAffine);

}  // namespace orbitwalk
