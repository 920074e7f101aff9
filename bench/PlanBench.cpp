// Planning a path from measured motions, on one core. Each line gives the residual beside the time.

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "orbitwalk/refine/PathPlanner.h"

namespace {

using namespace orbitwalk;
using namespace orbitwalk::refine;

constexpr FrameSize kSize{1920, 1080};

/// A pan of 12 pixels a frame, with a hand's sway, shake and roll.
std::vector<FrameMotion> shakyPan(int frames) {
    std::mt19937 random(3);
    std::normal_distribution<double> normal;
    std::vector<FrameMotion> motions;
    double lastRoll = 0;
    for (int t = 0; t < frames; ++t) {
        const double roll = 0.004 * normal(random);
        motions.push_back({.motion = {12 + 30 * std::sin(0.7 * t) + 8 * normal(random),
                                      20 * std::sin(0.9 * t) + 8 * normal(random), roll - lastRoll,
                                      0.0005, frameCentre(kSize)},
                           .quality = {},
                           .measured = true});
        lastRoll = roll;
    }
    return motions;
}

void planSweep(benchmark::State& state) {
    const auto motions = shakyPan(static_cast<int>(state.range(0)));
    const double keep = static_cast<double>(state.range(1)) / 100;
    PathPlan plan;
    for (auto _ : state)
        plan = std::get<PathPlan>(planPath(motions, kSize, keep));
    state.counters["residual_px"] = plan.after.shift();
    state.counters["steps"] = plan.steps;
    state.SetComplexityN(state.range(0));
}
BENCHMARK(planSweep)
    ->ArgNames({"frames", "keep%"})
    ->ArgsProduct({{125, 250, 500, 1000, 10000}, {90}})
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);
BENCHMARK(planSweep)
    ->ArgNames({"frames", "keep%"})
    ->ArgsProduct({{1000}, {80, 95, 99}})
    ->Unit(benchmark::kMillisecond);

}  // namespace
