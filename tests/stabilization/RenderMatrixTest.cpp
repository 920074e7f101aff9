#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "stabilization/RenderMatrix.h"

using namespace orbitwalk;

namespace {

FixedMatrix rendered(const Trajectory& transform) {
    return renderMatrix(rigidMatrix(transform));
}

TEST(RenderMatrix, TransposesTheInverseOfTheMotion) {
    // M^-1 = [R' | -R' t]; with R' = [.8 .6; -.6 .8] and t = (10, -4) -R' t = (-5.6, 9.2).
    const double expected[] = {.8, -.6, 0, .6, .8, 0, -5.6, 9.2, 1};
    const auto matrix = rendered({10, -4, std::atan2(.6, .8)});
    for (int i = 0; i < 9; ++i)
        EXPECT_NEAR(matrix[i], 1000000 * expected[i], 1.5) << "element " << i;
    EXPECT_EQ(rendered({}), kIdentityMatrix);
}

TEST(RenderMatrix, SaturatesLongTranslations) {
    const auto matrix = rendered({5000, -5000, 0});
    EXPECT_EQ(matrix[6], std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(matrix[7], std::numeric_limits<std::int32_t>::max());
    EXPECT_NEAR(matrix[0], 1000000, 1);
}

TEST(RenderMatrix, IsTheIdentityForAMotionThatHasNoInverse) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {std::nan(""), infinity, -infinity, 1e9, -1e30, 1e300}) {
        EXPECT_EQ(rendered({value, 0, 0}), kIdentityMatrix) << value;
        EXPECT_EQ(rendered({0, value, 0}), kIdentityMatrix) << value;
    }
    EXPECT_EQ(rendered({0, 0, infinity}), kIdentityMatrix);
}

}  // namespace
