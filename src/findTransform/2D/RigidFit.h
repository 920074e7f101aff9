#pragma once

#include <array>
#include <opencv2/core.hpp>
#include <optional>
#include <span>

namespace orbitwalk {

using SampleIndices = std::array<int, 3>;

/// Draws three different point pairs that determine a transform: apart from each other and not
/// nearly collinear in either set. Each index is `random.next() % count`, drawn again while it does
/// not suit the earlier ones, at most 500 times.
/// @param a, b  two equally long, non-empty point sets
/// @return nothing when one of the three indices was not found.
std::optional<SampleIndices> drawSample(cv::RNG& random, std::span<const cv::Point2f> a,
                                        std::span<const cv::Point2f> b);

/// Least-squares transform of the points a onto the points b, by the normal equations. Products are
/// single precision, sums double.
/// @param M           2x3 CV_64F, continuous; receives the transform.
/// @param fullAffine  false: [c -s tx; s c ty]; true: all six entries are free.
/// @throws cv::Exception when M is not continuous.
void getRTMatrix(const cv::Point2f* a, const cv::Point2f* b, int count, cv::Mat& M,
                 bool fullAffine);

}  // namespace orbitwalk
