#pragma once

#include <opencv2/core.hpp>
#include <optional>
#include <vector>

namespace orbitwalk {

using Points = std::vector<cv::Point2f>;

/// Index i of both arrays is one pair.
struct PointPairs {
    Points from;
    Points to;
};

/// Random samples of point pairs until one agrees with half of them, then a fit to all that agree.
/// @param from, to    equally long
/// @param fullAffine  see getRTMatrix
/// @param inliers     room to work in, which a caller may keep from call to call
std::optional<cv::Matx23d> fitToConsensus(const Points& from, const Points& to, bool fullAffine,
                                          PointPairs& inliers);

/// What cv::estimateRigidTransform of this library computes. Callers inside the library use this
/// name, so that no other implementation of the exported one can take its place.
cv::Mat rigidTransform(cv::InputArray src, cv::InputArray dst, bool fullAffine);

/// Name under which the errors of rigidTransform are raised.
extern const char* const kRigidTransformName;

}  // namespace orbitwalk
