#pragma once

/// @file
/// Convex quadratic programmes over a row of small blocks, neighbours coupled: banded.

#include <Eigen/Core>
#include <array>
#include <vector>

namespace orbitwalk::refine {

/// A symmetric matrix whose elements further than `band` from the diagonal are zero. Stored by
/// columns: element (j + k, j) at (k, j).
class BandedMatrix {
  public:
    BandedMatrix(Eigen::Index size, Eigen::Index band)
        : mLower(Eigen::MatrixXd::Zero(band + 1, size)) {}

    Eigen::Index size() const { return mLower.cols(); }
    Eigen::Index band() const { return mLower.rows() - 1; }
    /// row >= column, no further apart than the band.
    double& at(Eigen::Index row, Eigen::Index column) { return mLower(row - column, column); }

    Eigen::VectorXd operator*(const Eigen::VectorXd& x) const;
    /// Replaces the matrix by its Cholesky factor. @return false when it is not positive definite.
    bool factorize();
    /// Solves with the factor, in place.
    void solve(Eigen::VectorXd& x) const;

  private:
    Eigen::MatrixXd mLower;
};

/// Minimise x'Hx/2 + g'x + constant subject to a'x <= limit for each bound.
struct QuadraticProgram {
    static constexpr int kMostInBlock = 4;

    struct Bound {
        Eigen::Index first;                        ///< Variable that coefficients[0] belongs to.
        std::array<double, kMostInBlock> factors;  ///< Of `block` variables; the rest is unused.
        double limit;                              ///< Positive: 0 is strictly feasible.
    };

    QuadraticProgram(Eigen::Index size, Eigen::Index band, int variablesInBlock)
        : hessian(size, band), gradient(Eigen::VectorXd::Zero(size)), block(variablesInBlock) {}

    BandedMatrix hessian;  ///< Positive semidefinite.
    Eigen::VectorXd gradient;
    double constant = 0;  ///< The value at 0, to which tolerances are related.
    int block;
    std::vector<Bound> bounds;
};

struct Optimum {
    Eigen::VectorXd x;            ///< Strictly feasible.
    Eigen::VectorXd multipliers;  ///< One a bound, positive.
    double value = 0;             ///< With the constant.
    double gap = 0;  ///< value minus that of the dual: how far above the optimum at most.
    int steps = 0;
};

/// Primal-dual interior-point method with Mehrotra's predictor and corrector, from x = 0: every
/// iterate is strictly feasible. Ends when the gap is below `tolerance` of the value, or where that
/// is tiny of 1e-5 of the constant; at the latest after 60 steps, with what was reached.
/// S. Mehrotra, On the implementation of a primal-dual interior point method, SIAM J. Optim. 2
/// (1992); J. Nocedal, S. Wright, Numerical Optimization, 2nd ed., 16.6.
Optimum solve(const QuadraticProgram& program, double tolerance = 1e-6);

}  // namespace orbitwalk::refine
