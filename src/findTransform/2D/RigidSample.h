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

}  // namespace orbitwalk
