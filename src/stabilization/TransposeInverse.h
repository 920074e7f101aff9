#pragma once

#include <array>

namespace orbitwalk {

/// Three rows.
using Matrix3 = std::array<std::array<double, 3>, 3>;

/// The inverse of the transpose, by singular values; one that vanishes beside their sum is left
/// out, so that what has no inverse gives a singular matrix.
///
/// Only basic operations and square roots, in a fixed order: every machine gets the same bits. They
/// are those of OpenCV's DECOMP_SVD where that is built without fused multiply and add.
Matrix3 inverseOfTranspose(const Matrix3& matrix);

}  // namespace orbitwalk
