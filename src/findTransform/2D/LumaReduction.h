#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <span>
#include <vector>

/// The quarter-size luma picture on which all motion is measured.
namespace orbitwalk {

/// Full-size pixels per reduced pixel, along both axes.
constexpr int kReduction = 4;

/// Whether frames of this size can be reduced: at least one reduced pixel is left, and the 16.16
/// steps and the 16-bit source indices hold the sides.
bool canReduce(int width, int height);

/// Source index of each reduced row or column: nearest neighbour at 16.16 fixed-point steps.
/// Only whole groups of 8 are filled; the entries past the last one stay 0 and are never read.
/// @param sourceLength   full-size pixels, 4 to 32767
/// @param reducedLength  sourceLength / 4
std::vector<std::uint16_t> reductionTable(int sourceLength, int reducedLength);

/// Nearest-neighbour decimation through two tables. Only whole groups of 8 rows and 8 columns of
/// the target are written; its other bytes keep what they held.
/// @param source        rows of sourceStride bytes
/// @param target        rows.size() rows of columns.size() bytes
void reduceLuma(const unsigned char* source, int sourceStride, std::span<const std::uint16_t> rows,
                std::span<const std::uint16_t> columns, unsigned char* target);

/// View of the central three fifths in each direction: the region in which motion is measured.
/// Shares the image's pixels, so that filters near the view's border see the picture around it.
cv::Mat centralView(const cv::Mat& image);

}  // namespace orbitwalk
