#include <gmock/gmock.h>

#include "PointSets.h"
#include "findTransform/2D/RigidFit.h"

namespace {

using namespace point_sets;

// Of the generator x -> (x mod 2^32) * 4164903690 + (x div 2^32) that starts at 64 ones: its first
// outputs modulo 50 are 5 4 40 23 31 12 1 30 23 10 35 44 46 49 18 3 46 20 18 20, modulo 5 are
// 0 4 0 3 1 2 1 0, modulo 8 are 5 4 7.
TEST(RigidSample, DrawsFromTheGeneratorInOrder) {
    const Points points = onCircle(50);
    cv::RNG random(~std::uint64_t{0});
    for (const orbitwalk::SampleIndices& expected : std::vector<orbitwalk::SampleIndices>{
             {5, 4, 40}, {23, 31, 12}, {1, 30, 23}, {10, 35, 44}, {46, 49, 18}, {3, 46, 20}})
        EXPECT_EQ(orbitwalk::drawSample(random, points, points), expected);
}

TEST(RigidSample, DrawsAnUnsuitableIndexAgain) {
    const auto first = [](const Points& a, const Points& b) {
        cv::RNG random(~std::uint64_t{0});
        return orbitwalk::drawSample(random, a, b);
    };
    using Sample = orbitwalk::SampleIndices;
    EXPECT_EQ(first(onCircle(5), onCircle(5)), (Sample{0, 4, 3})) << "0 is in the sample already";

    const Points points = onCircle(50);
    Points changed = points;
    changed[4] = changed[5];
    EXPECT_EQ(first(points, changed), (Sample{5, 40, 23})) << "4 coincides with 5";
    changed = points;
    changed[40] = 2 * changed[4] - changed[5];
    EXPECT_EQ(first(points, changed), (Sample{5, 4, 23})) << "40 is in line with 5 and 4";
    EXPECT_EQ(first(changed, points), (Sample{5, 4, 23}));
    EXPECT_EQ(first(Points(50, {1, 1}), points), std::nullopt);
}

TEST(RigidLeastSquares, GivesTheFitsWorkedOutByHand) {
    cv::Mat m(2, 3, CV_64F);
    // Normal equations 2c+tx+ty=3, 2s-tx+ty=0, c-s+3tx=1, c+s+3ty=2.
    const Points corner = {{0, 0}, {1, 0}, {0, 1}}, stretched = {{0, 0}, {1, 0}, {0, 2}};
    orbitwalk::getRTMatrix(corner.data(), stretched.data(), 3, m, false);
    expectTransform(m, {1.5, 0.25, -0.25, -0.25, 1.5, 0.25}, 1e-12, 1e-12);
    // Only (x, y, 1) can be fitted: the square's alternating residual of 1 remains.
    const Points square = {{0, 0}, {2, 0}, {0, 2}, {2, 2}},
                 pulled = {{0, 0}, {2, 0}, {0, 2}, {6, 2}};
    orbitwalk::getRTMatrix(square.data(), pulled.data(), 4, m, true);
    expectTransform(m, {2, 1, -1, 0, 1, 0}, 1e-12, 1e-12);
}

TEST(RigidLeastSquares, FormsProductsInSinglePrecision) {
    // 4097^2 needs 25 bits: as a float it is 16785408, one less. With b = a the sums T0 and S00
    // agree whatever their width; with b = 1 px instead, c = T0/S00 shows it.
    const cv::Point2f a[] = {{4097, 0}, {-4097, 0}}, b[] = {{1, 0}, {-1, 0}};
    cv::Mat m(2, 3, CV_64F);
    orbitwalk::getRTMatrix(a, b, 2, m, false);
    EXPECT_NEAR(m.at<double>(0, 0), 4097.0 / 16785408.0, 1e-13);
}

}  // namespace
