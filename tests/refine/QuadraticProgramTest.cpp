#include "plan/QuadraticProgram.h"

#include <gtest/gtest.h>

#include <Eigen/Dense>
#include <random>

namespace orbitwalk::refine {
namespace {

TEST(QuadraticProgram, StopsAtABoundAndPassesALooseOne) {
    QuadraticProgram program(2, 0, 1);  // (x - 2)^2 + (y - 2)^2, x <= 1, y <= 5
    for (const int i : {0, 1}) {
        program.hessian.at(i, i) = 2;
        program.gradient[i] = -4;
        program.bounds.push_back({i, {1}, i == 0 ? 1.0 : 5.0});
    }
    program.constant = 8;
    const Optimum optimum = solve(program, 1e-9);
    EXPECT_NEAR(optimum.x[0], 1, 1e-7);
    EXPECT_NEAR(optimum.x[1], 2, 1e-6);
    EXPECT_NEAR(optimum.multipliers[0], 2, 1e-5);
    EXPECT_NEAR(optimum.value, 1, 1e-7);
    EXPECT_LE(std::abs(optimum.gap), 1e-7);
}

/// Blocks of three, each coupled with the next two, bounds of both signs on random directions.
QuadraticProgram randomProgram(unsigned seed, int blocks) {
    std::mt19937 random(seed);
    std::normal_distribution<double> normal;
    QuadraticProgram program(3 * blocks, 8, 3);
    for (int row = 0; row + 9 <= 3 * blocks; row += 2) {
        Eigen::VectorXd a = Eigen::VectorXd::NullaryExpr(9, [&] { return normal(random); });
        for (int c = 0; c < 9; ++c)
            for (int r = c; r < 9; ++r)
                program.hessian.at(row + r, row + c) += a[r] * a[c];
        program.gradient.segment(row, 9) += 10 * normal(random) * a;
    }
    program.constant = 1e3;
    for (int i = 0; i < 3 * blocks; ++i) {
        program.hessian.at(i, i) += 1e-6;
        for (const double sign : {1.0, -1.0})
            program.bounds.push_back({i / 3 * 3,
                                      {sign * normal(random), sign, sign * normal(random)},
                                      0.1 + std::abs(normal(random))});
    }
    return program;
}

TEST(QuadraticProgram, MeetsTheOptimalityConditions) {
    for (const unsigned seed : {1u, 2u, 3u, 4u}) {
        QuadraticProgram program = randomProgram(seed, 40);
        const Optimum optimum = solve(program, 1e-9);
        Eigen::VectorXd slope = program.gradient;
        for (int i = 0; i < slope.size(); ++i)
            for (int j = std::max(0, i - 8); j < std::min(int(slope.size()), i + 9); ++j)
                slope[i] += program.hessian.at(std::max(i, j), std::min(i, j)) * optimum.x[j];
        double complementarity = 0;
        int active = 0;
        for (std::size_t k = 0; k < program.bounds.size(); ++k) {
            const auto& bound = program.bounds[k];
            double reached = 0;
            for (int c = 0; c < 3; ++c) {
                reached += bound.factors[c] * optimum.x[bound.first + c];
                slope[bound.first + c] += bound.factors[c] * optimum.multipliers[k];
            }
            EXPECT_LE(reached, bound.limit + 1e-12) << k;
            EXPECT_GE(optimum.multipliers[k], 0) << k;
            complementarity += (bound.limit - reached) * optimum.multipliers[k];
            active += optimum.multipliers[k] > 1e-3;
        }
        EXPECT_LE(slope.lpNorm<Eigen::Infinity>(), 1e-6);
        EXPECT_LE(complementarity, 1e-5);
        EXPECT_GT(active, 10);
        EXPECT_LE(optimum.steps, 30);
    }
}

}  // namespace
}  // namespace orbitwalk::refine
