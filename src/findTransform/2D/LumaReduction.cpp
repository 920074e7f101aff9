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
    for (const std::uint16_t row : writtenRows) {
        const unsigned char* const sourceRow = source + std::ptrdiff_t{row} * sourceStride;
        for (std::size_t i = 0; i < writtenColumns.size(); ++i)
            target[i] = sourceRow[writtenColumns[i]];
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
