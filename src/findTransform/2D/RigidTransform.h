#pragma once

#include <opencv2/core.hpp>

namespace orbitwalk {

/// What cv::estimateRigidTransform of this library computes. Callers inside the library use this
/// name, so that no other implementation of the exported one can take its place.
cv::Mat rigidTransform(cv::InputArray src, cv::InputArray dst, bool fullAffine);

/// Name under which the errors of rigidTransform are raised.
extern const char* const kRigidTransformName;

}  // namespace orbitwalk
