#include "plan/SweepProgram.h"

#include <algorithm>
#include <cmath>

namespace orbitwalk::refine {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

PicturePoint unturned(PicturePoint p, const Placement& placement) {
    const PicturePoint turned = rotated(p, -placement.angle);
    const double scale = std::exp(-placement.logScale);
    return {scale * turned.x, scale * turned.y};
}

/// r_t as a linear function: constant + jacobian * (e_(t-1), e_t).
struct LinearMotion {
    MatrixXd jacobian;
    VectorXd constant;
};

class Linearisation {
  public:
    Linearisation(double radius, int axes) : mRadius(radius), mAxes(axes) {}

    LinearMotion operator()(const Placement& before, const SimilarityTransform& motion,
                            const Placement& now) const {
        const SimilarityTransform seen = seenMotion(before, motion, now);
        LinearMotion linear{MatrixXd::Zero(mAxes, 2 * mAxes), vectorOf(seen)};
        auto from = linear.jacobian.leftCols(mAxes);
        auto to = linear.jacobian.rightCols(mAxes);
        for (int axis = 0; axis < 2; ++axis) {
            const PicturePoint unit{axis == 0 ? 1.0 : 0.0, axis == 0 ? 0.0 : 1.0};
            const PicturePoint turned = unturned(motion.linear(unit), now);
            from.col(axis).head(2) << turned.x, turned.y;
            const PicturePoint back = unturned(unit, now);
            to.col(axis).head(2) << -back.x, -back.y;
        }
        // A turned crop sees the shift turned the other way, an enlarged one sees it reduced.
        to.col(2).head(2) << seen.y / mRadius, -seen.x / mRadius;
        if (mAxes == 4)
            to.col(3).head(2) << -seen.x / mRadius, -seen.y / mRadius;
        for (int axis = 2; axis < mAxes; ++axis) {
            from(axis, axis) = 1;
            to(axis, axis) = -1;
        }
        linear.constant -= from * vectorOf(before) + to * vectorOf(now);
        return linear;
    }

  private:
    VectorXd vectorOf(const SimilarityTransform& t) const {
        return Eigen::Vector4d(t.x, t.y, mRadius * t.angle, mRadius * t.logScale).head(mAxes);
    }

    double mRadius;
    int mAxes;
};

/// Adds the squares of a difference of motions: rows over the placements up to a frame.
void addSquares(const MatrixXd& rows, const VectorXd& constant, const VectorXd& weights,
                Index frame, QuadraticProgram& program) {
    const Index offset = (frame + 1) * program.block - rows.cols();
    const MatrixXd weighted = weights.asDiagonal() * rows;
    const MatrixXd square = rows.transpose() * weighted;
    for (Index c = 0; c < rows.cols(); ++c)
        for (Index r = c; r < rows.cols(); ++r)
            program.hessian.at(offset + r, offset + c) += 2 * square(r, c);
    program.gradient.segment(offset, rows.cols()) += 2 * weighted.transpose() * constant;
    program.constant += constant.dot(weights.cwiseProduct(constant));
}

void addDifferences(std::span<const SimilarityTransform> motions, std::span<const Placement> around,
                    const PathWeights& weights, QuadraticProgram& program) {
    const int axes = program.block;
    const Linearisation linearise(weights.radius, axes);
    VectorXd perAxis = VectorXd::Ones(axes);
    perAxis.tail(axes - 2).setConstant(weights.angle);
    std::array<LinearMotion, 3> last;  // r_(t-2), r_(t-1), r_t
    for (Index t = 1; t < std::ssize(motions); ++t) {
        std::rotate(last.begin(), last.begin() + 1, last.end());
        last[2] = linearise(around[t - 1], motions[t], around[t]);
        if (t < 2)
            continue;
        MatrixXd first = MatrixXd::Zero(axes, 3 * axes);
        first.rightCols(2 * axes) += last[2].jacobian;
        first.leftCols(2 * axes) -= last[1].jacobian;
        const VectorXd change = last[2].constant - last[1].constant;
        addSquares(first, change, perAxis, t, program);
        if (t < 3 || weights.second == 0)
            continue;
        MatrixXd second = MatrixXd::Zero(axes, 4 * axes);
        second.rightCols(3 * axes) = first;
        second.middleCols(axes, 2 * axes) -= last[1].jacobian;
        second.leftCols(2 * axes) += last[0].jacobian;
        addSquares(second, change - last[1].constant + last[0].constant, weights.second * perAxis,
                   t, program);
    }
}

/// |x| + b exp(l) |a| + A exp(l) <= W for the crop's half sizes A, b and the frame's W, the same
/// for y: one bound for each pair of signs, exp(l) by its tangent. cos a <= 1 and |sin a| <= |a|
/// make the rigid bounds suffice for the turned rectangle.
void addContainment(Index frame, const Placement& around, const Room& room, double radius,
                    QuadraticProgram& program) {
    constexpr double thinnest = 1e-7;  // pixels, where there is no room: the programme needs some
    const double growth = std::exp(around.logScale);
    const double lean = growth / radius;
    for (const int axis : {0, 1}) {
        const double along = axis == 0 ? room.halfWidth : room.halfHeight;
        const double across = axis == 0 ? room.halfHeight : room.halfWidth;
        const double limit = (axis == 0 ? room.x : room.y) - along * growth * (1 - around.logScale);
        for (const double sign : {1.0, -1.0})
            for (const double turn : {1.0, -1.0}) {
                QuadraticProgram::Bound bound{frame * program.block, {}, std::max(limit, thinnest)};
                bound.factors[axis] = sign;
                bound.factors[2] = turn * across * lean;
                if (program.block == 4)
                    bound.factors[3] = along * lean;
                program.bounds.push_back(bound);
            }
    }
}

void addLimits(Index frame, const PlanOptions& options, double radius, QuadraticProgram& program) {
    const double limits[] = {options.limitX, options.limitY, radius * options.limitAngle,
                             radius * options.limitLogScale};
    constexpr double thinnest = 1e-7;
    for (int axis = 0; axis < program.block; ++axis)
        for (const double sign : {1.0, -1.0})
            if (std::isfinite(limits[axis])) {
                QuadraticProgram::Bound bound{
                    frame * program.block, {}, std::max(limits[axis], thinnest)};
                bound.factors[axis] = sign;
                program.bounds.push_back(bound);
            }
}

}  // namespace

SimilarityTransform seenMotion(const Placement& before, const SimilarityTransform& motion,
                               const Placement& now) {
    const PicturePoint moved = motion.linear({before.x, before.y});
    const PicturePoint shift =
        unturned({moved.x + motion.x - now.x, moved.y + motion.y - now.y}, now);
    return {shift.x, shift.y, before.angle + motion.angle - now.angle,
            before.logScale + motion.logScale - now.logScale, motion.about};
}

PathResidual residualOf(std::span<const SimilarityTransform> motions,
                        std::span<const Placement> placements) {
    PathResidual sum;
    SimilarityTransform last;
    const double count = static_cast<double>(std::ssize(motions)) - 2;
    for (std::size_t t = 1; t < motions.size(); ++t) {
        const auto seen = seenMotion(placements[t - 1], motions[t], placements[t]);
        if (t > 1) {
            sum.x += std::pow(seen.x - last.x, 2);
            sum.y += std::pow(seen.y - last.y, 2);
            sum.angle += std::pow(seen.angle - last.angle, 2);
        }
        last = seen;
    }
    if (count < 1)
        return {};
    return {std::sqrt(sum.x / count), std::sqrt(sum.y / count), std::sqrt(sum.angle / count)};
}

/// A player shows the crop enlarged to the frame's size, edges on edges, so the outermost points
/// that it looks up lie outside the crop's outermost pixel centres by half of what a pixel of the
/// output is smaller than one of the frame. Truncation moves a point by at most a millionth of its
/// coordinates and one of the shift.
Room::Room(FrameSize frame, const CropRectangle& crop)
    : halfWidth((crop.width - static_cast<double>(crop.width) / frame.width) / 2),
      halfHeight((crop.height - static_cast<double>(crop.height) / frame.height) / 2) {
    const double lost = 1e-6 * (frame.width + frame.height + 1);
    x = (frame.width - 1) / 2.0 - lost;
    y = (frame.height - 1) / 2.0 - lost;
}

bool Room::holds(const Placement& placement) const {
    const double scale = std::exp(placement.logScale);
    const double c = scale * std::cos(placement.angle);
    const double s = scale * std::abs(std::sin(placement.angle));
    return std::abs(placement.x) + c * halfWidth + s * halfHeight <= x &&
           std::abs(placement.y) + s * halfWidth + c * halfHeight <= y;
}

Placement Room::shrunk(const Placement& placement) const {
    const auto part = [&](double share) {
        return Placement{share * placement.x, share * placement.y, share * placement.angle,
                         share * placement.logScale, placement.about};
    };
    if (holds(placement))
        return placement;
    double inside = 0, outside = 1;
    for (int round = 0; round < 50; ++round) {
        const double middle = (inside + outside) / 2;
        (holds(part(middle)) ? inside : outside) = middle;
    }
    return part(inside);
}

QuadraticProgram sweepProgram(std::span<const SimilarityTransform> motions,
                              std::span<const Placement> around, const Room& room,
                              const PathWeights& weights, const PlanOptions& options) {
    const int axes = options.smoothScale ? 4 : 3;
    const Index frames = std::ssize(motions);
    const Index blocksApart = weights.second > 0 ? 3 : 2;
    QuadraticProgram program(frames * axes, (blocksApart + 1) * axes - 1, axes);
    addDifferences(motions, around, weights, program);
    // What no bound holds (a steady drift of all placements) is drawn to the centre, hardly.
    constexpr double pull = 1e-8;
    for (Index i = 0; i < frames * axes; ++i)
        program.hessian.at(i, i) += pull;
    for (Index t = 0; t < frames; ++t) {
        addContainment(t, around[t], room, weights.radius, program);
        addLimits(t, options, weights.radius, program);
    }
    return program;
}

}  // namespace orbitwalk::refine
