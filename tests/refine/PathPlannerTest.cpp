#include "orbitwalk/refine/PathPlanner.h"

#include <gmock/gmock.h>

#include <limits>

#include "Sweeps.h"

namespace orbitwalk::refine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr FrameSize kSize{1280, 720};
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

PathPlan planned(const std::vector<FrameMotion>& motions, double keep,
                 const PlanOptions& options = {}, FrameSize size = kSize) {
    return std::get<PathPlan>(planPath(motions, size, keep, options));
}

/// First and second differences of what is seen, squared; turns by what they move the picture's
/// points on average, twenty times.
double unsteadiness(const std::vector<SimilarityTransform>& seen, const CropRectangle& crop) {
    const double radius2 = 20 * (std::pow(crop.width, 2) + std::pow(crop.height, 2)) / 12;
    const auto square = [&](double x, double y, double a) {
        return x * x + y * y + radius2 * a * a;
    };
    double sum = 0;
    for (std::size_t t = 1; t < seen.size(); ++t) {
        const auto &r = seen[t], &q = seen[t - 1];
        sum += square(r.x - q.x, r.y - q.y, r.angle - q.angle);
        if (t < 2)
            continue;
        const auto& p = seen[t - 2];
        sum += square(r.x - 2 * q.x + p.x, r.y - 2 * q.y + p.y, r.angle - 2 * q.angle + p.angle);
    }
    return sum;
}

bool isInside(const SimilarityTransform& correction, const PathPlan& plan) {
    const SimilarityTransform frameFromOutput = correction.inverse();
    const CropRectangle& crop = plan.crop;
    for (const double x : {crop.x, crop.x + crop.width - 1})
        for (const double y : {crop.y, crop.y + crop.height - 1}) {
            const PicturePoint p = frameFromOutput({x, y});
            if (p.x < 0 || p.y < 0 || p.x > plan.size.width - 1 || p.y > plan.size.height - 1)
                return false;
        }
    return true;
}

TEST(PathPlanner, SeesNothingInAnEvenPan) {
    const PathPlan plan = planned(std::vector<FrameMotion>(50, moved(14, -3)), 0.9);
    EXPECT_NEAR(plan.after.shift(), 0, 1e-4);
    EXPECT_EQ(plan.crop, (CropRectangle{64, 36, 1152, 648}));
    EXPECT_NEAR(plan.viewKept, 0.81, 1e-9);
}

TEST(PathPlanner, StatesTheResidualThatTheMapsHave) {
    const PathPlan plan = planned(shakySweep(80, kSize, 5), 0.92);
    const auto seen = seenBy(plan, plan.corrections);
    double x = 0, y = 0, angle = 0;
    for (std::size_t t = 1; t < seen.size(); ++t) {
        x += std::pow(seen[t].x - seen[t - 1].x, 2);
        y += std::pow(seen[t].y - seen[t - 1].y, 2);
        angle += std::pow(seen[t].angle - seen[t - 1].angle, 2);
    }
    const double changes = double(seen.size()) - 1;
    EXPECT_NEAR(plan.after.x, std::sqrt(x / changes), 1e-9);
    EXPECT_NEAR(plan.after.y, std::sqrt(y / changes), 1e-9);
    EXPECT_NEAR(plan.after.angle, std::sqrt(angle / changes), 1e-12);
    EXPECT_LT(plan.after.shift(), 0.2 * plan.before.shift());
    EXPECT_LT(plan.after.angle, 0.2 * plan.before.angle);
}

TEST(PathPlanner, LeavesNoVariationInsideTheFramesThatIsSteadier) {
    std::mt19937 random(9);
    std::normal_distribution<double> normal;
    for (const double keep : {0.96, 0.985}) {
        const PathPlan plan = planned(shakySweep(60, kSize, 7), keep);
        const double optimum = unsteadiness(seenBy(plan, plan.corrections), plan.crop);
        EXPECT_NEAR(optimum, plan.objective, 2e-3 * optimum);
        int tried = 0;
        for (int trial = 0; trial < 4000; ++trial) {
            // A bump of random width, height and place: what single frames hold back, others allow.
            const double width = std::exp(2 * normal(random)), place = 30 + 20 * normal(random);
            const double size = std::pow(10, normal(random) - 1);
            const double x = normal(random), y = normal(random), angle = 0.003 * normal(random);
            auto varied = plan.corrections;
            for (std::size_t t = 0; t < varied.size(); ++t) {
                const double bump = size * std::exp(-std::pow((double(t) - place) / width, 2));
                varied[t].x += bump * x;
                varied[t].y += bump * y;
                varied[t].angle += bump * angle;
            }
            if (!std::ranges::all_of(varied, [&](const auto& c) { return isInside(c, plan); }))
                continue;
            ++tried;
            EXPECT_GT(unsteadiness(seenBy(plan, varied), plan.crop), 0.99 * optimum);
        }
        EXPECT_GT(tried, 50);
    }
}

TEST(PathPlanner, BridgesWhatWasNotMeasuredFromBothSides) {
    auto motions = std::vector<FrameMotion>(8, moved(kNaN, 0));
    for (auto& motion : motions)
        motion.measured = false;
    motions[2] = moved(6, 0, 0.01, 0, frameCentre(kSize));
    motions[5] = moved(12, -3, 0.04, 0, frameCentre(kSize));
    const PathPlan plan = planned(motions, 0.9);
    EXPECT_THAT(plan.bridged, ElementsAre(1, 3, 4, 6, 7));
    const double x[] = {0, 6, 6, 8, 10, 12, 12, 12};
    for (int t = 0; t < 8; ++t)
        EXPECT_NEAR(plan.motions[t].x, x[t], 1e-12) << t;
    EXPECT_NEAR(plan.motions[4].y, -2, 1e-12);
    EXPECT_NEAR(plan.motions[4].angle, 0.03, 1e-12);
}

TEST(PathPlanner, SeesThroughFramesThatAreNotShown) {
    const auto all = shakySweep(41, kSize, 3);
    PlanOptions options;
    std::vector<FrameMotion> pairs(1);
    for (int t = 0; t < 41; t += 2) {
        options.shown.push_back(t);
        if (t > 0)
            pairs.push_back(
                {.motion = all[t].motion * all[t - 1].motion, .quality = {}, .measured = true});
    }
    const PathPlan some = planned(all, 0.9, options);
    const PathPlan same = planned(pairs, 0.9);
    ASSERT_EQ(some.corrections.size(), 21u);
    for (int t = 0; t < 21; ++t)
        EXPECT_NEAR(some.corrections[t].x, same.corrections[t].x, 1e-9);
}

TEST(PathPlanner, HoldsTheLimitsOfEachAxis) {
    const PathPlan plan =
        planned(shakySweep(60, kSize, 2), 0.8, {.limitX = 3, .limitY = 5, .limitAngle = 0});
    for (const auto& correction : plan.corrections) {
        EXPECT_LE(std::abs(correction.x), 3 + 1e-6);
        EXPECT_LE(std::abs(correction.y), 5 + 1e-6);
        EXPECT_LE(std::abs(correction.angle), 1e-8);
    }
}

TEST(PathPlanner, SmoothsTheScaleForSomeOfTheView) {
    const auto motions = shakySweep(60, kSize, 4);
    const auto scaleChange = [&](bool smooth) {
        const PathPlan plan = planned(motions, 0.9, {.smoothScale = smooth});
        double sum = 0;
        double view = 0;
        const auto seen = seenBy(plan, plan.corrections);
        for (std::size_t t = 1; t < seen.size(); ++t)
            sum += std::pow(seen[t].logScale - seen[t - 1].logScale, 2);
        for (const auto& correction : plan.corrections) {
            EXPECT_TRUE(isInside(correction, plan));
            view += 0.81 * std::exp(-2 * correction.logScale) / 60;
        }
        EXPECT_NEAR(plan.viewKept, view, 1e-9);
        return sum;
    };
    EXPECT_LT(scaleChange(true), 0.05 * scaleChange(false));
}

TEST(PathPlanner, FindsTheLargestCropThatIsSteadyEnough) {
    const auto motions = shakySweep(60, kSize, 6);
    const auto found = std::get<PathPlan>(planForSteadiness(motions, kSize, 0.5));
    EXPECT_LE(found.after.shift(), 0.5);
    const double keep = double(found.crop.width) / kSize.width;
    EXPECT_GT(planned(motions, keep + 0.004).after.shift(), 0.5);
    const double nearest = planned(motions, 0.5).after.shift();
    const auto refused = std::get<PlanRefusal>(planForSteadiness(motions, kSize, nearest / 2));
    EXPECT_EQ(refused.fault, PlanFault::Steadiness);
    EXPECT_THAT(refused.text, HasSubstr(std::to_string(nearest)));
}

TEST(PathPlanner, KeepsTheSmallestCropUpright) {
    const PathPlan plan = planned(shakySweep(60, kSize, 6), 1e-9);
    EXPECT_LT(plan.after.shift(), 0.01);
    for (const auto& correction : plan.corrections)
        EXPECT_LT(std::abs(correction.angle), 0.5);
}

TEST(PathPlanner, LeavesShortSweepsAndWholeFramesAsTheyAre) {
    for (const int frames : {1, 2, 40})
        for (const auto& correction :
             planned(shakySweep(frames, kSize, 1), frames > 2 ? 1 : 0.9).corrections) {
            EXPECT_EQ(correction.x, 0);
            EXPECT_EQ(correction.angle, 0);
        }
}

TEST(PathPlanner, RefusesWhatIsNoSweep) {
    const auto good = shakySweep(5, kSize, 1);
    const auto with = [&](FrameMotion motion) {
        auto motions = good;
        motions[3] = motion;
        return motions;
    };
    const struct {
        PlanFault fault;
        std::vector<FrameMotion> motions;
        FrameSize size = kSize;
        double keep = 0.9;
        PlanOptions options = {};
    } cases[] = {
        {PlanFault::NoFrames, {}},
        {PlanFault::FrameSize, good, {1280, 3}},
        {PlanFault::FrameSize, good, {40000, 720}},
        {PlanFault::Motion, with(moved(kNaN, 0))},
        {PlanFault::Motion, with(moved(0, 0, kNaN))},
        {PlanFault::Motion, with(moved(1281, 0))},
        {PlanFault::Motion, with(moved(0, 0, 2))},
        {PlanFault::Motion, with(moved(0, 0, 0, -1.5))},
        {PlanFault::Keep, good, kSize, 0},
        {PlanFault::Keep, good, kSize, 1.01},
        {PlanFault::Keep, good, kSize, kNaN},
        {PlanFault::Options, good, kSize, 0.9, {.limitX = -1}},
        {PlanFault::Options, good, kSize, 0.9, {.limitAngle = kNaN}},
        {PlanFault::Selection, good, kSize, 0.9, {.shown = {1, 1}}},
        {PlanFault::Selection, good, kSize, 0.9, {.shown = {0, 5}}},
    };
    for (const auto& [fault, motions, size, keep, options] : cases) {
        const auto plan = planPath(motions, size, keep, options);
        ASSERT_TRUE(std::holds_alternative<PlanRefusal>(plan)) << int(fault);
        EXPECT_EQ(std::get<PlanRefusal>(plan).fault, fault);
    }
    EXPECT_EQ(std::get<PlanRefusal>(planForSteadiness(good, kSize, -1)).fault,
              PlanFault::Steadiness);
}

}  // namespace
}  // namespace orbitwalk::refine
