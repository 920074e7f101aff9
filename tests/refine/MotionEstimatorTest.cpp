#include <gtest/gtest.h>

#include <cmath>
#include <opencv2/core/utility.hpp>
#include <random>
#include <stdexcept>
#include <vector>

#include "orbitwalk/refine/MotionEstimator.h"

namespace orbitwalk::refine {
namespace {

constexpr FrameSize kSize{320, 240};
constexpr double kDegree = 0.017453292519943295;

using Pixels = std::vector<std::uint8_t>;

/// Gaussian spots. A similarity of the scene moves and grows each spot and leaves it one, so that
/// every frame is exact at every pixel, whatever the motion.
class SpotScene {
  public:
    explicit SpotScene(unsigned seed, PicturePoint least = {-60, -60},
                       PicturePoint most = {380, 300}) {
        std::mt19937 random(seed);
        const auto between = [&](double low, double high) {
            return low + (high - low) * (static_cast<double>(random()) / 4294967296.0);
        };
        for (int i = 0; i < 700; ++i)
            mSpots.push_back({{between(least.x, most.x), between(least.y, most.y)},
                              between(1.5, 5),
                              between(-70, 70)});
    }

    /// Adds the scene as it looks after a motion to brightness values.
    void draw(const SimilarityTransform& motion, std::vector<double>& values) const {
        for (const Spot& spot : mSpots) {
            const PicturePoint at = motion(spot.at);
            const double sigma = spot.sigma * std::exp(motion.logScale);
            const int reach = static_cast<int>(std::ceil(5 * sigma));
            const int left = std::max(0, static_cast<int>(at.x) - reach);
            const int top = std::max(0, static_cast<int>(at.y) - reach);
            for (int y = top; y < std::min<double>(kSize.height, at.y + reach); ++y)
                for (int x = left; x < std::min<double>(kSize.width, at.x + reach); ++x)
                    values[y * kSize.width + x] +=
                        spot.height *
                        std::exp(-((x - at.x) * (x - at.x) + (y - at.y) * (y - at.y)) /
                                 (2 * sigma * sigma));
        }
    }

  private:
    struct Spot {
        PicturePoint at;
        double sigma;
        double height;
    };
    std::vector<Spot> mSpots;
};

Pixels rounded(const std::vector<double>& values) {
    Pixels pixels;
    for (const double value : values)
        pixels.push_back(static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 255.0))));
    return pixels;
}

Pixels frameOf(const SpotScene& scene, const SimilarityTransform& motion) {
    std::vector<double> values(kSize.width * kSize.height, 128);
    scene.draw(motion, values);
    return rounded(values);
}

FrameMotion give(MotionEstimator& estimator, const Pixels& pixels) {
    return estimator.next({pixels.data(), kSize.width, kSize});
}

SimilarityTransform about(double x, double y, double degrees, double logScale) {
    return {x, y, degrees * kDegree, logScale, frameCentre(kSize)};
}

void expectNear(const SimilarityTransform& motion, const SimilarityTransform& truth,
                double pixels) {
    EXPECT_NEAR(motion.x, truth.x, pixels);
    EXPECT_NEAR(motion.y, truth.y, pixels);
    EXPECT_NEAR(motion.angle, truth.angle, pixels / 100);
    EXPECT_NEAR(motion.logScale, truth.logScale, pixels / 100);
    EXPECT_EQ(motion.about, frameCentre(kSize));
}

TEST(MotionEstimator, MeasuresSimilaritiesToAFiftiethOfAPixel) {
    const SpotScene scene(1);
    for (const SimilarityTransform& truth :
         {about(0, 0, 0, 0), about(0.37, -0.61, 0, 0), about(-23.4, 9.8, 0, 0),
          about(2.2, 1.1, 1.5, 0), about(-1.4, 0.3, 0, 0.02), about(5.5, -3.5, -2, -0.03)}) {
        MotionEstimator estimator(kSize);
        EXPECT_FALSE(give(estimator, frameOf(scene, about(0, 0, 0, 0))).measured);
        const FrameMotion motion = give(estimator, frameOf(scene, truth));
        ASSERT_TRUE(motion.measured);
        expectNear(motion.motion, truth, 0.02);
        EXPECT_GT(motion.quality.tracks, 60);
        EXPECT_GT(motion.quality.spread, 0.7);
        EXPECT_LT(motion.quality.residual, 0.3);
    }
}

// Summed, each frame's own error of a hundredth would come to more.
TEST(MotionEstimator, DoesNotDrift) {
    const SpotScene scene(2);
    MotionEstimator estimator(kSize);
    SimilarityTransform sum = about(0, 0, 0, 0);
    for (int i = 0; i < 30; ++i) {
        const SimilarityTransform pose =
            about(1.3 * i, 4 * std::sin(0.9 * i), std::sin(0.7 * i), 0);
        const FrameMotion motion = give(estimator, frameOf(scene, pose));
        EXPECT_EQ(motion.measured, i > 0);
        sum = motion.motion * sum;
        expectNear(sum, pose, 0.03);
    }
}

TEST(MotionEstimator, IgnoresWhatMovesByItself) {
    const SpotScene scene(3), walker(4, {100, 20}, {220, 220});
    const auto frame = [&](double x, double walked) {
        std::vector<double> values(kSize.width * kSize.height, 128);
        scene.draw(about(x, 0, 0, 0), values);
        // The walker stands before the scene.
        for (int y = 30; y < 210; ++y)
            for (int i = 0; i < 90; ++i)
                values[y * kSize.width + 110 + static_cast<int>(walked) + i] = 128;
        std::vector<double> own(values.size(), 0);
        walker.draw(about(walked, 0, 0, 0), own);
        for (int y = 30; y < 210; ++y)
            for (int i = 0; i < 90; ++i) {
                const int at = y * kSize.width + 110 + static_cast<int>(walked) + i;
                values[at] += own[at];
            }
        return rounded(values);
    };
    MotionEstimator estimator(kSize);
    for (int i = 0; i < 8; ++i) {
        const FrameMotion motion = give(estimator, frame(-2.5 * i, 3 * i));
        if (i > 0)
            expectNear(motion.motion, about(-2.5, 0, 0, 0), 0.06);
    }
}

TEST(MotionEstimator, MarksWhatItCannotMeasure) {
    const SpotScene scene(5), other(6);
    const Pixels first = frameOf(scene, about(0, 0, 0, 0));
    const Pixels cut = frameOf(other, about(0, 0, 0, 0));
    const Pixels flat(first.size(), 90);
    MotionEstimator estimator(kSize);
    for (const auto& [pixels, measured] :
         std::vector<std::pair<const Pixels*, bool>>{{&first, false},
                                                     {&first, true},
                                                     {&cut, false},
                                                     {&cut, true},
                                                     {&flat, false},
                                                     {&flat, false},
                                                     {&first, false}}) {
        const FrameMotion motion = give(estimator, *pixels);
        EXPECT_EQ(motion.measured, measured);
        if (!measured) {
            EXPECT_EQ(motion.motion, about(0, 0, 0, 0));
        }
    }
    estimator.reset();
    EXPECT_FALSE(give(estimator, first).measured);
    EXPECT_TRUE(give(estimator, first).measured);
}

std::vector<FrameMotion> measuredWith(int threads, std::ptrdiff_t stride) {
    const int before = cv::getNumThreads();
    cv::setNumThreads(threads);
    const SpotScene scene(7);
    MotionEstimator estimator(kSize);
    std::vector<FrameMotion> motions;
    for (int i = 0; i < 6; ++i) {
        const Pixels tight = frameOf(scene, about(2.1 * i, -1.3 * i, 0.2 * i, 0.002 * i));
        Pixels wide(stride * kSize.height, 77);
        for (int y = 0; y < kSize.height; ++y)
            std::copy_n(&tight[y * kSize.width], kSize.width, &wide[y * stride]);
        motions.push_back(estimator.next({wide.data(), stride, kSize}));
    }
    cv::setNumThreads(before);
    return motions;
}

TEST(MotionEstimator, GivesTheSameBitsWhateverTheThreadsAndTheStride) {
    const auto motions = measuredWith(1, kSize.width);
    for (const auto& other : {measuredWith(2, kSize.width), measuredWith(4, kSize.width + 13)})
        for (std::size_t i = 0; i < motions.size(); ++i) {
            EXPECT_EQ(other[i].motion, motions[i].motion);
            EXPECT_EQ(other[i].quality.residual, motions[i].quality.residual);
        }
}

TEST(MotionEstimator, RefusesWhatIsNoFrameAndGoesOn) {
    for (const FrameSize size : {FrameSize{15, 240}, {320, 0}, {-320, 240}, {40000, 240}})
        EXPECT_THROW(MotionEstimator{size}, std::invalid_argument);
    const SpotScene scene(8);
    const Pixels pixels = frameOf(scene, about(0, 0, 0, 0));
    MotionEstimator estimator(kSize);
    give(estimator, pixels);
    const LumaFrame refused[] = {{nullptr, kSize.width, kSize},
                                 {pixels.data(), kSize.width - 1, kSize},
                                 {pixels.data(), kSize.width, {kSize.width, kSize.height - 2}}};
    for (const LumaFrame& frame : refused)
        EXPECT_THROW(estimator.next(frame), std::invalid_argument);
    const FrameMotion motion = give(estimator, frameOf(scene, about(1, 0, 0, 0)));
    EXPECT_TRUE(motion.measured);
    expectNear(motion.motion, about(1, 0, 0, 0), 0.02);

    constexpr FrameSize tiny{16, 16};
    MotionEstimator smallest(tiny);
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(smallest.next({pixels.data(), tiny.width, tiny}).measured);
}

}  // namespace
}  // namespace orbitwalk::refine
