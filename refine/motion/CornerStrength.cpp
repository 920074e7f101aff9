#include "motion/CornerStrength.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace orbitwalk::refine {

namespace {

/// Of the products' sums, for a difference of one grey level to the next place.
constexpr float kScale = 1.0f / (4 * 3 * 255);

/// A row's products of derivatives.
struct Products {
    explicit Products(int width) : xx(width), xy(width), yy(width) {}

    std::vector<std::int32_t> xx, xy, yy;
};

/// The derivatives of a row between two others.
struct Derivatives {
    explicit Derivatives(int width) : x(width), y(width) {}

    void take(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below) {
        const int last = static_cast<int>(x.size()) - 1;
        for (int i = 1; i < last; ++i) {
            x[i] = static_cast<std::int16_t>(above[i + 1] - above[i - 1] +
                                             2 * (row[i + 1] - row[i - 1]) + below[i + 1] -
                                             below[i - 1]);
            y[i] =
                static_cast<std::int16_t>(below[i - 1] - above[i - 1] + 2 * (below[i] - above[i]) +
                                          below[i + 1] - above[i + 1]);
        }
    }

    void multiply(Products& products) const {
        for (std::size_t i = 0; i < x.size(); ++i) {
            products.xx[i] = std::int32_t{x[i]} * x[i];
            products.xy[i] = std::int32_t{x[i]} * y[i];
            products.yy[i] = std::int32_t{y[i]} * y[i];
        }
    }

    std::vector<std::int16_t> x, y;
};

void add(const std::vector<std::int32_t>& a, const std::vector<std::int32_t>& b,
         const std::vector<std::int32_t>& c, std::vector<std::int32_t>& sum) {
    for (std::size_t i = 0; i < sum.size(); ++i)
        sum[i] = a[i] + b[i] + c[i];
}

/// Nine of the largest products are below 2^24: each sum is a float's to the last bit.
float around(const std::vector<std::int32_t>& sums, int i) {
    return static_cast<float>(sums[i - 1] + sums[i] + sums[i + 1]);
}

/// @param columns  the products' sums over three rows.
void smallerEigenvalues(const Products& columns, float* strength) {
    const int width = static_cast<int>(columns.xx.size());
    for (int i = 2; i < width - 2; ++i) {
        const float xx = around(columns.xx, i) * 0.5f;
        const float xy = around(columns.xy, i);
        const float yy = around(columns.yy, i) * 0.5f;
        strength[i] = (xx + yy - std::sqrt((xx - yy) * (xx - yy) + xy * xy)) * (kScale * kScale);
    }
}

}  // namespace

void cornerStrength(const cv::Mat1b& picture, cv::Mat1f& strength) {
    strength.create(picture.size());
    strength.setTo(0);
    const int width = picture.cols;
    if (width < 5 || picture.rows < 5)
        return;
    Derivatives derivatives(width);
    Products columns(width);
    std::array<Products, 3> rows{Products(width), Products(width), Products(width)};
    for (int y = 1; y < picture.rows - 1; ++y) {
        derivatives.take(picture[y - 1], picture[y], picture[y + 1]);
        derivatives.multiply(rows[y % 3]);
        if (y < 3)
            continue;
        add(rows[0].xx, rows[1].xx, rows[2].xx, columns.xx);
        add(rows[0].xy, rows[1].xy, rows[2].xy, columns.xy);
        add(rows[0].yy, rows[1].yy, rows[2].yy, columns.yy);
        smallerEigenvalues(columns, strength[y - 1]);
    }
}

}  // namespace orbitwalk::refine
