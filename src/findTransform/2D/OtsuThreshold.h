#pragma once

#include <optional>
#include <span>

namespace orbitwalk {

/// Value that best splits the values into a small and a large group: the largest variance between
/// the groups (Otsu, "A threshold selection method from gray-level histograms", 1979), over a
/// histogram of one bin per whole number. On a plateau of equal maxima: the middle between its
/// first and its last bin.
/// @param values  ascending, non-negative whole numbers; may be empty (threshold 0).
/// @return nothing when the histogram cannot be allocated.
std::optional<float> otsuThreshold(std::span<const float> values);

}  // namespace orbitwalk
