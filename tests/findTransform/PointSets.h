#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <opencv2/core.hpp>
#include <random>
#include <vector>

/// Point sets and transforms for the tests of the rigid estimator.
namespace point_sets {

using Points = std::vector<cv::Point2f>;

inline Points onCircle(int count) {
    Points points;
    for (int i = 0; i < count; ++i) {
        const double angle = 6.283185307 * i / count;
        points.emplace_back(static_cast<float>(200 + 150 * std::cos(angle)),
                            static_cast<float>(150 + 150 * std::sin(angle)));
    }
    return points;
}

inline Points scattered(int count, unsigned seed) {
    std::mt19937 random(seed);
    Points points;
    for (int i = 0; i < count; ++i) {
        const auto x = static_cast<float>(random() % 3000) / 10;
        points.emplace_back(x, static_cast<float>(random() % 2000) / 10);
    }
    return points;
}

inline Points mapped(const Points& points, const cv::Matx23d& m) {
    Points result;
    for (const auto& p : points) {
        const cv::Vec2d q = m * cv::Vec3d(p.x, p.y, 1);
        result.emplace_back(static_cast<float>(q[0]), static_cast<float>(q[1]));
    }
    return result;
}

inline cv::Matx23d rotation(double angle, double tx, double ty) {
    return {std::cos(angle), -std::sin(angle), tx, std::sin(angle), std::cos(angle), ty};
}

inline void expectTransform(const cv::Mat& m, const cv::Matx23d& truth, double linear,
                            double pixels) {
    ASSERT_EQ(m.size(), cv::Size(3, 2));
    ASSERT_EQ(m.type(), CV_64F);
    for (int row = 0; row < 2; ++row)
        for (int col = 0; col < 3; ++col)
            EXPECT_NEAR(m.at<double>(row, col), truth(row, col), col < 2 ? linear : pixels)
                << row << "," << col;
}

}  // namespace point_sets
