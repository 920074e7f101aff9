#include "stabilization/TransposeInverse.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

namespace orbitwalk {

namespace {

using Row = std::array<double, 3>;

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

double dot(const Row& a, const Row& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// std::hypot fuses multiply and add where the machine can.
double hypotenuse(double a, double b) {
    const double longer = std::max(std::abs(a), std::abs(b));
    const double shorter = std::min(std::abs(a), std::abs(b));
    const double ratio = shorter / longer;
    return longer * std::sqrt(1 + ratio * ratio);
}

struct Rotation {
    double c, s;

    void turn(Row& a, Row& b) const {
        for (int k = 0; k < 3; ++k)
            std::tie(a[k], b[k]) = std::pair(c * a[k] + s * b[k], c * b[k] - s * a[k]);
    }
};

/// Makes two rows orthogonal whose squared lengths are a and b, and their product p.
Rotation orthogonalising(double a, double b, double p) {
    const double difference = a - b;
    const double length = hypotenuse(2 * p, difference);
    if (difference < 0) {
        const double s = std::sqrt((length - difference) * 0.5 / length);
        return {2 * p / (length * s * 2), s};
    }
    const double c = std::sqrt((length + difference) / (length * 2));
    return {c, 2 * p / (length * c * 2)};
}

/// One-sided Jacobi: the rows are turned, pair by pair, until they are orthogonal; their lengths
/// are then the singular values, and `turns` is what turned them.
struct Decomposition {
    explicit Decomposition(const Matrix3& matrix) : rows(matrix) {
        for (int i = 0; i < 3; ++i)
            squares[i] = dot(rows[i], rows[i]);
        constexpr int kMostSweeps = 30;
        for (int sweep = 0; sweep < kMostSweeps; ++sweep) {
            bool turned = turn(0, 1);
            turned = turn(0, 2) || turned;
            turned = turn(1, 2) || turned;
            if (!turned)
                break;
        }
    }

    /// Whether the two were not orthogonal yet.
    bool turn(int i, int j) {
        const double product = dot(rows[i], rows[j]);
        if (std::abs(product) <= 10 * kEpsilon * std::sqrt(squares[i] * squares[j]))
            return false;
        const Rotation rotation = orthogonalising(squares[i], squares[j], product);
        rotation.turn(rows[i], rows[j]);
        rotation.turn(turns[i], turns[j]);
        squares[i] = dot(rows[i], rows[i]);
        squares[j] = dot(rows[j], rows[j]);
        return true;
    }

    Matrix3 rows;
    Matrix3 turns{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    Row squares;
};

/// Indices by falling value; of equal ones as a selection leaves them.
std::array<int, 3> fallingOrder(Row values) {
    std::array<int, 3> order{0, 1, 2};
    for (int i = 0; i < 2; ++i) {
        int largest = i;
        for (int k = i + 1; k < 3; ++k)
            if (values[largest] < values[k])
                largest = k;
        std::swap(values[i], values[largest]);
        std::swap(order[i], order[largest]);
    }
    return order;
}

}  // namespace

Matrix3 inverseOfTranspose(const Matrix3& matrix) {
    const Decomposition decomposition(matrix);
    Row values;
    for (int i = 0; i < 3; ++i)
        values[i] = std::sqrt(decomposition.squares[i]);
    const std::array<int, 3> order = fallingOrder(values);
    const double vanishing =
        (values[order[0]] + values[order[1]] + values[order[2]]) * 2 * kEpsilon;

    Matrix3 inverse{};
    for (const int i : order) {
        const double value = values[i];
        if (value <= vanishing)
            continue;
        for (int r = 0; r < 3; ++r)
            for (int k = 0; k < 3; ++k)
                inverse[r][k] += decomposition.turns[i][r] *
                                 (decomposition.rows[i][k] * (1 / value) * (1 / value));
    }
    return inverse;
}

}  // namespace orbitwalk
