#include "plan/QuadraticProgram.h"

#include <algorithm>
#include <cmath>

namespace orbitwalk::refine {

using Eigen::Index;
using Eigen::VectorXd;

VectorXd BandedMatrix::operator*(const VectorXd& x) const {
    VectorXd y = VectorXd::Zero(size());
    for (Index j = 0; j < size(); ++j) {
        const Index below = std::min(band(), size() - 1 - j);
        y.segment(j, below + 1) += x[j] * mLower.col(j).head(below + 1);
        y[j] += mLower.col(j).segment(1, below).dot(x.segment(j + 1, below));
    }
    return y;
}

bool BandedMatrix::factorize() {
    for (Index j = 0; j < size(); ++j) {
        if (!(mLower(0, j) > 0))
            return false;
        mLower.col(j) /= std::sqrt(mLower(0, j));
        const Index below = std::min(band(), size() - 1 - j);
        for (Index k = 1; k <= below; ++k)
            mLower.col(j + k).head(below - k + 1) -=
                mLower(k, j) * mLower.col(j).segment(k, below - k + 1);
    }
    return true;
}

void BandedMatrix::solve(VectorXd& x) const {
    for (Index j = 0; j < size(); ++j) {
        const Index below = std::min(band(), size() - 1 - j);
        x[j] /= mLower(0, j);
        x.segment(j + 1, below) -= x[j] * mLower.col(j).segment(1, below);
    }
    for (Index j = size() - 1; j >= 0; --j) {
        const Index below = std::min(band(), size() - 1 - j);
        x[j] -= mLower.col(j).segment(1, below).dot(x.segment(j + 1, below));
        x[j] /= mLower(0, j);
    }
}

namespace {

using Bounds = std::vector<QuadraticProgram::Bound>;

/// The bounds' matrix G, row by row.
class BoundRows {
  public:
    explicit BoundRows(const QuadraticProgram& program) : mProgram(program) {}

    VectorXd times(const VectorXd& x) const {
        VectorXd y(static_cast<Index>(mProgram.bounds.size()));
        for (Index i = 0; i < y.size(); ++i)
            y[i] = row(i).dot(x.segment(mProgram.bounds[i].first, mProgram.block));
        return y;
    }
    VectorXd transposedTimes(const VectorXd& y) const {
        VectorXd x = VectorXd::Zero(mProgram.gradient.size());
        for (Index i = 0; i < y.size(); ++i)
            x.segment(mProgram.bounds[i].first, mProgram.block) += y[i] * row(i);
        return x;
    }
    /// Adds G' diag(weights) G.
    void addNormal(const VectorXd& weights, BandedMatrix& matrix) const {
        for (Index i = 0; i < weights.size(); ++i) {
            const auto& bound = mProgram.bounds[i];
            for (int c = 0; c < mProgram.block; ++c)
                for (int r = c; r < mProgram.block; ++r)
                    matrix.at(bound.first + r, bound.first + c) +=
                        weights[i] * bound.factors[r] * bound.factors[c];
        }
    }
    VectorXd limits() const {
        VectorXd limit(static_cast<Index>(mProgram.bounds.size()));
        for (Index i = 0; i < limit.size(); ++i)
            limit[i] = mProgram.bounds[i].limit;
        return limit;
    }

  private:
    Eigen::Map<const VectorXd> row(Index i) const {
        return {mProgram.bounds[i].factors.data(), mProgram.block};
    }

    const QuadraticProgram& mProgram;
};

/// The longest step, up to 1, that keeps all elements positive.
double longestStep(const VectorXd& from, const VectorXd& direction) {
    double step = 1;
    for (Index i = 0; i < from.size(); ++i)
        if (direction[i] < 0)
            step = std::min(step, -from[i] / direction[i]);
    return step;
}

/// Slacks and multipliers (s, z) of an iterate, and the steps from it.
class Iterate {
  public:
    explicit Iterate(const QuadraticProgram& program)
        : mProgram(program),
          mRows(program),
          mNormal(program.hessian),
          x(VectorXd::Zero(program.gradient.size())) {
        slack = mRows.limits();
        // As large as what the bounds have to hold against: the gradient at the typical slack.
        const double pull = program.gradient.cwiseAbs().mean() * slack.mean();
        z = std::max(pull, 1e-12) * slack.cwiseInverse();
    }

    double complementarity() const { return slack.dot(z); }
    double value() const { return x.dot(mHx) / 2 + mProgram.gradient.dot(x) + mProgram.constant; }
    /// value() minus the dual's value at z: s'z, and what is missing from stationarity.
    double gap() const { return complementarity() + x.dot(mDual); }
    double stationarity() const { return mDual.lpNorm<Eigen::Infinity>(); }

    void evaluate() {
        mHx = mProgram.hessian * x;
        mDual = mHx + mProgram.gradient + mRows.transposedTimes(z);
    }

    /// @return false when the system cannot be solved any more.
    bool advance() {
        mNormal = mProgram.hessian;
        mRows.addNormal(z.cwiseQuotient(slack), mNormal);
        if (!mNormal.factorize())
            return false;
        const double mu = complementarity() / static_cast<double>(z.size());
        const Direction predictor = direction(slack.cwiseProduct(z));
        const double reach =
            std::min(longestStep(slack, predictor.slack), longestStep(z, predictor.z));
        const double reached = (slack + reach * predictor.slack).dot(z + reach * predictor.z) /
                               static_cast<double>(z.size());
        const double centring = std::pow(reached / mu, 3);
        const VectorXd target = slack.cwiseProduct(z) + predictor.slack.cwiseProduct(predictor.z) -
                                VectorXd::Constant(z.size(), centring * mu);
        const Direction corrector = direction(target);
        const double step =
            0.995 * std::min(longestStep(slack, corrector.slack), longestStep(z, corrector.z));
        x += step * corrector.x;
        slack += step * corrector.slack;
        z += step * corrector.z;
        return true;
    }

  private:
    struct Direction {
        VectorXd x, slack, z;
    };

    /// Newton's direction towards stationarity and s z = s z - target. Feasibility holds already.
    Direction direction(const VectorXd& target) const {
        Direction d;
        d.x = mRows.transposedTimes(target.cwiseQuotient(slack)) - mDual;
        mNormal.solve(d.x);
        d.slack = -mRows.times(d.x);
        d.z = -(target + z.cwiseProduct(d.slack)).cwiseQuotient(slack);
        return d;
    }

    const QuadraticProgram& mProgram;
    BoundRows mRows;
    BandedMatrix mNormal;  // factor of H + G' diag(z / s) G
    VectorXd mHx, mDual;

  public:
    VectorXd x, slack, z;
};

}  // namespace

Optimum solve(const QuadraticProgram& program, double tolerance) {
    constexpr int mostSteps = 60;
    Iterate iterate(program);
    iterate.evaluate();
    int steps = 0;
    const double steepness = std::max(program.gradient.lpNorm<Eigen::Infinity>(), 1e-12);
    const auto isDone = [&] {
        const double size = std::max({iterate.value(), 1e-5 * program.constant, 1e-12});
        return iterate.complementarity() <= tolerance * size &&
               std::abs(iterate.gap()) <= 2 * tolerance * size &&
               iterate.stationarity() <= tolerance * steepness;
    };
    while (steps < mostSteps && !isDone() && iterate.advance()) {
        iterate.evaluate();
        ++steps;
    }
    return {iterate.x, iterate.z, iterate.value(), iterate.gap(), steps};
}

}  // namespace orbitwalk::refine
