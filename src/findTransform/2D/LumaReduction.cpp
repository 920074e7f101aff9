#include "findTransform/2D/LumaReduction.h"

namespace orbitwalk {
namespace {

constexpr int kLargestSide = 32767;

std::size_t wholeGroups(std::size_t length) {
    return length & ~std::size_t{7};
}

bool sideFits(int side) {
    return side >= kReduction && side <= kLargestSide;
}

void pick(const unsigned char* source, std::span<const std::uint16_t> columns,
          unsigned char* target) {
    for (std::size_t i = 0; i < columns.size(); ++i)
        target[i] = source[columns[i]];
}

/// What the table of a width that is a multiple of 4 says. Its steps never fall below 4, so that
/// the last one tells of all.
bool isEveryFourth(std::span<const std::uint16_t> columns) {
    return !columns.empty() && columns.back() == kReduction * (columns.size() - 1);
}

/// The same as pick, in a form that compilers make vectors of.
void pickEveryFourth(const unsigned char* source, std::size_t count, unsigned char* target) {
    for (std::size_t i = 0; i < count; ++i)
        target[i] = source[kReduction * i];
}

}  // namespace

bool canReduce(int width, int height) {
    return sideFits(width) && sideFits(height);
}

std::vector<std::uint16_t> reductionTable(int sourceLength, int reducedLength) {
    std::vector<std::uint16_t> table(reducedLength);
    const int step = (sourceLength << 16) / reducedLength + 1;
    for (int i = 0; i < static_cast<int>(wholeGroups(reducedLength)); ++i)
        table[i] = static_cast<std::uint16_t>((i * step) >> 16);
    return table;
}

void reduceLuma(const unsigned char* source, int sourceStride, std::span<const std::uint16_t> rows,
                std::span<const std::uint16_t> columns, unsigned char* target) {
    const auto writtenRows = rows.first(wholeGroups(rows.size()));
    const auto writtenColumns = columns.first(wholeGroups(columns.size()));
    const bool everyFourth = isEveryFourth(writtenColumns);
    for (const std::uint16_t row : writtenRows) {
        const unsigned char* const sourceRow = source + std::ptrdiff_t{row} * sourceStride;
        if (everyFourth)
            pickEveryFourth(sourceRow, writtenColumns.size(), target);
        else
            pick(sourceRow, writtenColumns, target);
        target += columns.size();
    }
}

cv::Mat centralView(const cv::Mat& image) {
    const int marginY = image.rows / 5;
    const int marginX = image.cols / 5;
    return image(cv::Range(marginY, image.rows - marginY),
                 cv::Range(marginX, image.cols - marginX));
}

}  // namespace orbitwalk
