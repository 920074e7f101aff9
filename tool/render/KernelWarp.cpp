#include "render/FramePlanes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>
#include <opencv2/core/hal/intrin.hpp>
#include <vector>

namespace orbitwalk::tool {

namespace {

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

/// Of the pixels about a point, row by row.
template <int taps>
using Weights = std::array<std::int16_t, std::size_t{taps} * taps>;

struct Cubic {
    static constexpr int taps = 4;
    static constexpr bool blackBeyond = false;

    static std::array<float, taps> at(float t) {
        constexpr float a = -0.75f;
        std::array<float, taps> w{};
        w[0] = ((a * (t + 1) - 5 * a) * (t + 1) + 8 * a) * (t + 1) - 4 * a;
        w[1] = ((a + 2) * t - (a + 3)) * t * t + 1;
        w[2] = ((a + 2) * (1 - t) - (a + 3)) * (1 - t) * (1 - t) + 1;
        w[3] = 1.f - w[0] - w[1] - w[2];
        return w;
    }
};

/// sinc(x) sinc(x / 4). At points a pixel apart the first sine is one number but for its sign,
/// which is in the five quarters of the angle; the number itself goes where the weights come to
/// sum 1.
struct Lanczos {
    static constexpr int taps = 8;
    static constexpr bool blackBeyond = true;

    static std::array<float, taps> at(float t) {
        if (t == 0)
            return {0, 0, 0, 1, 0, 0, 0, 0};
        constexpr double quarter = std::numbers::pi / 4;
        std::array<float, taps> w{};
        float sum = 0;
        for (int i = 0; i < taps; ++i) {
            const double y = -(t + 3.f - static_cast<float>(i)) * quarter;
            const double sine = std::sin(-(t + 3.f) * quarter + 5 * quarter * i);
            sum += w[static_cast<std::size_t>(i)] = static_cast<float>(sine / (y * y));
        }
        for (float& weight : w)
            weight *= 1.f / sum;
        return w;
    }
};

/// What rounding left over goes to the largest of the lower right weights, what it took too much
/// comes from the smallest: a flat surface stays as it is. (All of them would do; these are those
/// that OpenCV takes.)
template <int taps>
void makeSumWhole(Weights<taps>& weights) {
    int excess = -(1 << kWeightBits);
    for (const std::int16_t weight : weights)
        excess += weight;
    constexpr std::size_t first = std::size_t{taps} / 2 * (taps + 1);
    constexpr std::array<std::size_t, 4> lowerRight{first, first + 1, first + taps,
                                                    first + taps + 1};
    const auto byWeight = [&](std::size_t i, std::size_t j) { return weights[i] < weights[j]; };
    const std::size_t at = excess < 0 ? *std::ranges::max_element(lowerRight, byWeight)
                                      : *std::ranges::min_element(lowerRight, byWeight);
    weights[at] = static_cast<std::int16_t>(weights[at] - excess);
}

template <typename Kernel>
std::vector<Weights<Kernel::taps>> makeTable() {
    constexpr int taps = Kernel::taps;
    std::vector<Weights<taps>> table;
    for (int y = 0; y < kPhases; ++y)
        for (int x = 0; x < kPhases; ++x) {
            const auto rows = Kernel::at(static_cast<float>(y) / kPhases);
            const auto columns = Kernel::at(static_cast<float>(x) / kPhases);
            Weights<taps>& weights = table.emplace_back();
            for (std::size_t i = 0; i < weights.size(); ++i)
                weights[i] = cv::saturate_cast<std::int16_t>(rows[i / taps] * columns[i % taps] *
                                                             (1 << kWeightBits));
            makeSumWhole<taps>(weights);
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

template <typename Kernel>
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
    static constexpr int kTaps = Kernel::taps;
    /// Pixels of a row before the one at the point.
    static constexpr int kBefore = kTaps / 2 - 1;

    static const Weights<kTaps>& weightsAt(cv::Point phases) {
        static const std::vector<Weights<kTaps>> table = makeTable<Kernel>();
        const int y = phases.y & (kPhases - 1), x = phases.x & (kPhases - 1);
        return table[static_cast<std::size_t>(y * kPhases + x)];
    }

    /// Whether all of the pixels about it are the frame's.
    bool isInside(cv::Point phases) const {
        const int x = phases.x >> kPhaseBits, y = phases.y >> kPhaseBits;
        return x >= kBefore && y >= kBefore && x < mFrame.cols - kTaps / 2 &&
               y < mFrame.rows - kTaps / 2;
    }

    std::uint8_t atBorder(cv::Point phases) const {
        const Weights<kTaps>& weights = weightsAt(phases);
        int sum = 1 << (kWeightBits - 1);
        for (int i = 0; i < kTaps * kTaps; ++i) {
            const cv::Point p((phases.x >> kPhaseBits) - kBefore + i % kTaps,
                              (phases.y >> kPhaseBits) - kBefore + i / kTaps);
            const cv::Point nearest(std::clamp(p.x, 0, mFrame.cols - 1),
                                    std::clamp(p.y, 0, mFrame.rows - 1));
            if (!Kernel::blackBeyond || p == nearest)
                sum += weights[static_cast<std::size_t>(i)] * mFrame(nearest);
        }
        return cv::saturate_cast<std::uint8_t>(sum >> kWeightBits);
    }

    /// Four sums whose total is the weighted sum of the pixels about the point.
    cv::v_int32x4 sums(cv::Point phases) const {
        const std::ptrdiff_t step = static_cast<std::ptrdiff_t>(mFrame.step[0]);
        const std::uint8_t* const from = mFrame.data + ((phases.y >> kPhaseBits) - kBefore) * step +
                                         (phases.x >> kPhaseBits) - kBefore;
        const std::int16_t* const weights = weightsAt(phases).data();
        if constexpr (kTaps == 4)
            return sumOf4x4(from, step, weights);
        else
            return sumOf8x8(from, step, weights);
    }

    static cv::v_int32x4 sumOf4x4(const std::uint8_t* from, std::ptrdiff_t step,
                                  const std::int16_t* weights) {
        const auto four = [&](int row) {
            unsigned pixels = 0;
            std::memcpy(&pixels, from + row * step, sizeof pixels);
            return pixels;
        };
        const cv::v_uint32x4 pixels(four(0), four(1), four(2), four(3));
        cv::v_uint16x8 upper, lower;
        cv::v_expand(cv::v_reinterpret_as_u8(pixels), upper, lower);
        return cv::v_dotprod(cv::v_reinterpret_as_s16(lower), cv::v_load(weights + 8),
                             cv::v_dotprod(cv::v_reinterpret_as_s16(upper), cv::v_load(weights)));
    }

    static cv::v_int32x4 sumOf8x8(const std::uint8_t* from, std::ptrdiff_t step,
                                  const std::int16_t* weights) {
        cv::v_int32x4 sum = cv::v_setzero_s32();
        for (int row = 0; row < 8; ++row)
            sum = cv::v_dotprod(cv::v_reinterpret_as_s16(cv::v_load_expand(from + row * step)),
                                cv::v_load(weights + 8 * row), sum);
        return sum;
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

template <typename Kernel>
void warp(const cv::Mat1b& frame, const Affine& frameFromOutput, cv::Mat1b& output) {
    const Warp<Kernel> rows(frame, frameFromOutput, output);
    for (int y = 0; y < output.rows; ++y)
        rows.row(y);
}

}  // namespace

void warpBicubic(const cv::Mat1b& frame, const Affine& frameFromOutput, cv::Mat1b& output) {
    warp<Cubic>(frame, frameFromOutput, output);
}

void warpLanczos(const cv::Mat1b& frame, const Affine& frameFromOutput, cv::Mat1b& output) {
    warp<Lanczos>(frame, frameFromOutput, output);
}

}  // namespace orbitwalk::tool
