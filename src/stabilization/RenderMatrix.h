#pragma once

#include <array>
#include <cstdint>
#include <opencv2/core/mat.hpp>

#include "orbitwalk/Geometry.h"

namespace orbitwalk {

/// Nine elements, row by row, each the value times 1000000, truncated.
using FixedMatrix = std::array<std::int32_t, 9>;

inline constexpr FixedMatrix kIdentityMatrix{1000000, 0, 0, 0, 1000000, 0, 0, 0, 1000000};

/// [cos a, -sin a, x; sin a, cos a, y; 0, 0, 1], CV_64F.
/// @throws cv::Exception, std::bad_alloc when OpenCV cannot allocate.
cv::Mat rigidMatrix(const Trajectory& transform);

/// Render matrix of a frame moved by a rigid matrix: the inverse of its transpose, so that the
/// inverted translation stands in the third row.
///
/// The inverse is taken by singular value decomposition, whose rounding together with truncation
/// can leave an element one unit short (999999 for 1). The result is always invertible: a matrix
/// that is not finite, or moves so far (some 4.7e7 pixels) that its inverse vanishes, gives the
/// identity. A translation beyond 2147 pixels saturates.
FixedMatrix renderMatrix(const cv::Mat& rigid);

}  // namespace orbitwalk
