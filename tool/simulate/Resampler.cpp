#include "simulate/ColourPlanes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace orbitwalk::tool {

namespace {

constexpr int taps = 8;
constexpr int tapsBefore = taps / 2 - 1;  // Samples left of the one that a point falls behind.
constexpr int phases = 1024;

using AxisWeights = std::array<float, taps>;

// Weight of the sample at node, of nodes -tapsBefore to tapsBefore + 1, for a point between 0
// and 1.
double lagrange(int node, double point) {
    double weight = 1;
    for (int other = -tapsBefore; other <= tapsBefore + 1; ++other)
        if (other != node)
            weight *= (point - other) / (node - other);
    return weight;
}

std::vector<AxisWeights> makeAxisWeights() {
    std::vector<AxisWeights> table(phases + 1);
    for (int phase = 0; phase <= phases; ++phase)
        for (int i = 0; i < taps; ++i)
            table[phase][i] =
                static_cast<float>(lagrange(i - tapsBefore, static_cast<double>(phase) / phases));
    return table;
}

struct Sample {
    int first;  // First of the taps along one axis.
    int phase;
};

Sample locate(double position, int length) {
    const double whole = std::floor(position);
    const int first = static_cast<int>(std::clamp(whole - tapsBefore, 0.0, double(length - taps)));
    return {first, cvRound((position - whole) * phases)};
}

float filtered(const float* corner, std::size_t stride, const AxisWeights& wx,
               const AxisWeights& wy) {
    std::array<float, taps> columns{};
    for (int row = 0; row < taps; ++row)
        for (int i = 0; i < taps; ++i)
            columns[i] += wy[row] * corner[row * stride + i];
    float sum = 0;
    for (int i = 0; i < taps; ++i)
        sum += wx[i] * columns[i];
    return sum;
}

}  // namespace

void resample(const cv::Mat1f& source, const SamplingGrid& grid, cv::Mat1f& target) {
    static const std::vector<AxisWeights> weights = makeAxisWeights();
    CV_Assert(source.cols >= taps && source.rows >= taps);
    const auto rows = [&](const cv::Range& range) {
        for (int y = range.start; y < range.end; ++y) {
            float* out = target[y];
            for (int x = 0; x < target.cols; ++x) {
                const cv::Point2d point = grid.at(x, y);
                const Sample h = locate(point.x, source.cols), v = locate(point.y, source.rows);
                out[x] = filtered(source[v.first] + h.first, source.step1(), weights[h.phase],
                                  weights[v.phase]);
            }
        }
    };
    cv::parallel_for_({0, target.rows}, rows);
}

}  // namespace orbitwalk::tool
