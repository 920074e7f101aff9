
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "render/FramePlanes.h"
#include "tool/AnalyticSweep.h"

namespace orbitwalk::tool {
namespace {

const cv::Size kSize(320, 240);

std::vector<std::uint8_t> warp(const std::vector<std::uint8_t>& frame, const Affine& map) {
    std::vector<std::uint8_t> output(frame.size());
    warpFrame(frame, kSize, map, output);
    return output;
}

/// Largest difference of a plane from a function of its samples' luma coordinates.
template <typename Expected>
double largestError(const cv::Mat1b& plane, const Affine& lumaFromSample, Expected expected) {
    double worst = 0;
    for (int j = 0; j < plane.rows; ++j)
        for (int i = 0; i < plane.cols; ++i)
            worst = std::max(
                worst, std::abs(plane(j, i) - expected(lumaFromSample({double(i), double(j)}))));
    return worst;
}

// Positions are resolved to 1/32 px, where luma rises by up to 8 levels a pixel, the kernel's own
// error is about one level, and samples are rounded twice.
TEST(FrameWarp, ShowsTheSceneWhereTheMapPointsInAllPlanes) {
    const double angle = 0.02;
    const double c = 0.85 * std::cos(angle), s = 0.85 * std::sin(angle);
    const auto frame = test_support::sceneFrame(320, 240, 0, 0);
    for (const Affine& map : {Affine{c, -s, 23.3, s, c, 11.6}, Affine{-c, s, 290.2, s, c, 14.4}}) {
        const auto output = warp(frame, map);
        const FramePlanes planes = planesOf(std::span(output), kSize);
        const auto scene = [&](auto plane) {
            return [&map, plane](PicturePoint p) {
                const PicturePoint from = map(p);
                return test_support::sceneAt(from.x, from.y).*plane;
            };
        };
        EXPECT_LT(largestError(planes.y, {}, scene(&test_support::SceneColour::y)), 2);
        EXPECT_LT(largestError(planes.cb, kLumaFromColour, scene(&test_support::SceneColour::cb)),
                  1.5);
        EXPECT_LT(largestError(planes.cr, kLumaFromColour, scene(&test_support::SceneColour::cr)),
                  1.5);
    }
}

/// Luma column at which a row of samples crosses 128.
double edgeOf(const cv::Mat1b& plane, int row, const Affine& lumaFromSample) {
    for (int i = 0; i + 1 < plane.cols; ++i) {
        const double here = plane(row, i) - 128.0, next = plane(row, i + 1) - 128.0;
        if (here * next <= 0 && here != next)
            return lumaFromSample({i + here / (here - next), 0}).x;
    }
    return NAN;
}

TEST(FrameWarp, MovesTheEdgesOfLumaAndColourTogether) {
    std::vector<std::uint8_t> frame(frameBytes(kSize), 128);
    FramePlanes planes = planesOf(std::span(frame), kSize);
    const auto edge = [](double x) {
        return cv::saturate_cast<uchar>(128 + 80 * std::tanh((x - 150) / 4));
    };
    for (int j = 0; j < planes.y.rows; ++j)
        for (int i = 0; i < planes.y.cols; ++i)
            planes.y(j, i) = edge(i);
    for (int j = 0; j < planes.cb.rows; ++j)
        for (int i = 0; i < planes.cb.cols; ++i)
            planes.cb(j, i) = edge(2 * i);
    const Affine mirrored{-1, 0, 319, 0, 1, 0}, enlarged{0.8, 0, 30, 0, 0.8, 20};
    for (const Affine& map : {mirrored, enlarged, mirrored * enlarged, translation(0.5, 0.5)}) {
        const auto output = warp(frame, map);
        const FramePlanes shown = planesOf(std::span(output), kSize);
        const double expected = inverse(map)({150, 0}).x;
        EXPECT_NEAR(edgeOf(shown.y, 100, {}), expected, 0.1);
        EXPECT_NEAR(edgeOf(shown.cb, 50, kLumaFromColour), expected, 0.2);
    }
}

TEST(FrameWarp, IsThatOfOpenCvToTheByte) {
    cv::Mat1b noise(61, 83);
    cv::randu(noise, 0, 256);
    const cv::Size tiny(3, 2);
    for (const Affine& map :
         {Affine{}, translation(0.5, -3.26), translation(-500, 120), translation(1e5, -1e5),
          Affine{0.97, -0.05, 3.3, 0.04, 0.98, 1.6}, Affine{-0.6, 0.9, 50.7, 0.8, 0.7, -20.1}})
        for (const cv::Mat1b& frame : {noise, cv::Mat1b(noise(cv::Rect({}, tiny)))}) {
            cv::Mat1b output(70, 91);
            const auto expectEqual = [&](auto warpBy, int method, int border) {
                cv::Mat1b expected;
                cv::warpAffine(frame, expected, matrixOf(map), output.size(),
                               method | cv::WARP_INVERSE_MAP, border);
                warpBy(frame, map, output);
                EXPECT_EQ(cv::norm(expected, output, cv::NORM_L1), 0) << method;
            };
            expectEqual(warpBicubic, cv::INTER_CUBIC, cv::BORDER_REPLICATE);
            expectEqual(warpLanczos, cv::INTER_LANCZOS4, cv::BORDER_CONSTANT);
        }
}

TEST(MissingPixels, CountsPointsMoreThanAPixelOutside) {
    EXPECT_EQ(missingPixels(kSize, {}), 0);
    EXPECT_EQ(missingPixels(kSize, translation(-1, 1)), 0);
    EXPECT_EQ(missingPixels(kSize, translation(-3, 0)), 2 * 240);
    EXPECT_EQ(missingPixels(kSize, translation(0, 4.5)), 4 * 320);
    EXPECT_EQ(missingPixels(kSize, translation(3, 4)), 2 * 240 + 3 * 320 - 2 * 3);
    EXPECT_EQ(missingPixels(kSize, translation(1000, 0)), 320 * 240);
}

}  // namespace
}  // namespace orbitwalk::tool
