#include "render/BicubicWarp.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <opencv2/core/hal/intrin.hpp>
#include <vector>

namespace orbitwalk::tool {

namespace {

constexpr int kTaps = 4;
/// Positions between two pixels that are told apart.
constexpr int kPhaseBits = 5;
constexpr int kPhases = 1 << kPhaseBits;
/// Positions are added up in finer steps, so that a row does not drift.
constexpr int kStepBits = 10;
constexpr int kWeightBits = 15;
/// Pixels that are computed at once.
constexpr int kTogether = 8;
/// Farther out, in steps, every frame shows its border: sums of two do not overflow.
constexpr double kFarthestSteps = 1 << 29;

/// Of the 4 x 4 pixels, row by row.
using Weights = std::array<std::int16_t, kTaps * kTaps>;

std::array<float, kTaps> cubicKernel(float t) {
    constexpr float a = -0.75f;
    std::array<float, kTaps> w{};
    w[0] = ((a * (t + 1) - 5 * a) * (t + 1) + 8 * a) * (t + 1) - 4 * a;
    w[1] = ((a + 2) * t - (a + 3)) * t * t + 1;
    w[2] = ((a + 2) * (1 - t) - (a + 3)) * (1 - t) * (1 - t) + 1;
    w[3] = 1.f - w[0] - w[1] - w[2];
    return w;
}

/// What rounding left over goes to the largest of the lower right weights, what it took too much
/// comes from the smallest: a flat surface stays as it is. (All of them would do; these are those
/// that OpenCV takes.)
void makeSumWhole(Weights& weights) {
    int excess = -(1 << kWeightBits);
    for (const std::int16_t weight : weights)
        excess += weight;
    constexpr std::array<std::size_t, 4> lowerRight{2 * kTaps + 2, 2 * kTaps + 3, 3 * kTaps + 2,
                                                    3 * kTaps + 3};
    const auto byWeight = [&](std::size_t i, std::size_t j) { return weights[i] < weights[j]; };
    const std::size_t at = excess < 0 ? *std::ranges::max_element(lowerRight, byWeight)
                                      : *std::ranges::min_element(lowerRight, byWeight);
    weights[at] = static_cast<std::int16_t>(weights[at] - excess);
}

std::vector<Weights> makeTable() {
    std::vector<Weights> table;
    for (int y = 0; y < kPhases; ++y)
        for (int x = 0; x < kPhases; ++x) {
            const auto rows = cubicKernel(static_cast<float>(y) / kPhases);
            const auto columns = cubicKernel(static_cast<float>(x) / kPhases);
            Weights& weights = table.emplace_back();
            for (std::size_t i = 0; i < weights.size(); ++i)
                weights[i] = cv::saturate_cast<std::int16_t>(rows[i / kTaps] * columns[i % kTaps] *
                                                             (1 << kWeightBits));
            makeSumWhole(weights);
        }
    return table;
}

int inSteps(double pixels) {
    return static_cast<int>(
        std::lrint(std::clamp(pixels * (1 << kStepBits), -kFarthestSteps, kFarthestSteps)));
}

/// Where in the frame, in phases, the pixels of an output row lie.
struct RowMap {
    const std::vector<int>& dx;  ///< In steps, from the row's first pixel.
    const std::vector<int>& dy;
    int x;  ///< Of the first pixel, in steps, with half a phase for rounding.
    int y;

    cv::Point operator[](int i) const {
        const auto k = static_cast<std::size_t>(i);
        return {(x + dx[k]) >> (kStepBits - kPhaseBits), (y + dy[k]) >> (kStepBits - kPhaseBits)};
    }
};

class Warp {
  public:
    Warp(const cv::Mat1b& frame, const Affine& map, cv::Mat1b& output)
        : mFrame(frame), mMap(map), mOutput(output) {
        for (int x = 0; x < output.cols; ++x) {
            mDx.push_back(inSteps(map.xx * x));
            mDy.push_back(inSteps(map.yx * x));
        }
    }

    void row(int y) const {
        constexpr int half = 1 << (kStepBits - kPhaseBits - 1);
        const RowMap map{mDx, mDy, inSteps(mMap.xy * y + mMap.x0) + half,
                         inSteps(mMap.yy * y + mMap.y0) + half};
        std::uint8_t* const out = mOutput[y];
        // The frame is convex: what lies well inside it is one stretch of the row.
        int first = 0, end = mOutput.cols;
        for (; first < end && !isInside(map[first]); ++first)
            out[first] = atBorder(map[first]);
        for (; end > first && !isInside(map[end - 1]); --end)
            out[end - 1] = atBorder(map[end - 1]);
        for (; end - first >= kTogether; first += kTogether)
            inside(map, first, out + first);
        for (; first < end; ++first)
            out[first] = atBorder(map[first]);
    }

  private:
    static const Weights& weightsAt(cv::Point phases) {
        static const std::vector<Weights> table = makeTable();
        const int y = phases.y & (kPhases - 1), x = phases.x & (kPhases - 1);
        return table[static_cast<std::size_t>(y * kPhases + x)];
    }

    /// Whether all of the 4 x 4 pixels are the frame's.
    bool isInside(cv::Point phases) const {
        const int x = phases.x >> kPhaseBits, y = phases.y >> kPhaseBits;
        return x >= 1 && y >= 1 && x < mFrame.cols - 2 && y < mFrame.rows - 2;
    }

    std::uint8_t atBorder(cv::Point phases) const {
        const Weights& weights = weightsAt(phases);
        int sum = 1 << (kWeightBits - 1);
        for (int i = 0; i < kTaps * kTaps; ++i) {
            const int y = std::clamp((phases.y >> kPhaseBits) - 1 + i / kTaps, 0, mFrame.rows - 1);
            const int x = std::clamp((phases.x >> kPhaseBits) - 1 + i % kTaps, 0, mFrame.cols - 1);
            sum += weights[static_cast<std::size_t>(i)] * mFrame(y, x);
        }
        return cv::saturate_cast<std::uint8_t>(sum >> kWeightBits);
    }

    /// Four sums whose total is the weighted sum of the 4 x 4 pixels.
    cv::v_int32x4 sums(cv::Point phases) const {
        const std::ptrdiff_t step = static_cast<std::ptrdiff_t>(mFrame.step[0]);
        const std::uint8_t* const from =
            mFrame.data + ((phases.y >> kPhaseBits) - 1) * step + (phases.x >> kPhaseBits) - 1;
        const auto four = [&](int row) {
            unsigned pixels = 0;
            std::memcpy(&pixels, from + row * step, sizeof pixels);
            return pixels;
        };
        const cv::v_uint32x4 pixels(four(0), four(1), four(2), four(3));
        cv::v_uint16x8 upper, lower;
        cv::v_expand(cv::v_reinterpret_as_u8(pixels), upper, lower);
        const std::int16_t* const weights = weightsAt(phases).data();
        return cv::v_dotprod(cv::v_reinterpret_as_s16(lower), cv::v_load(weights + 8),
                             cv::v_dotprod(cv::v_reinterpret_as_s16(upper), cv::v_load(weights)));
    }

    cv::v_int32x4 fourInside(const RowMap& map, int x) const {
        cv::v_int32x4 a, b, c, d;
        cv::v_transpose4x4(sums(map[x]), sums(map[x + 1]), sums(map[x + 2]), sums(map[x + 3]), a, b,
                           c, d);
        const cv::v_int32x4 half = cv::v_setall_s32(1 << (kWeightBits - 1));
        return (a + b + (c + d + half)) >> kWeightBits;
    }

    void inside(const RowMap& map, int x, std::uint8_t* out) const {
        cv::v_pack_u_store(out, cv::v_pack(fourInside(map, x), fourInside(map, x + 4)));
    }

    const cv::Mat1b& mFrame;
    const Affine& mMap;
    cv::Mat1b& mOutput;
    std::vector<int> mDx;
    std::vector<int> mDy;
};

}  // namespace

void warpBicubic(const cv::Mat1b& frame, const Affine& frameFromOutput, cv::Mat1b& output) {
    const Warp warp(frame, frameFromOutput, output);
    for (int y = 0; y < output.rows; ++y)
        warp.row(y);
}

}  // namespace orbitwalk::tool
