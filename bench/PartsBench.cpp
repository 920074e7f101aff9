#include <benchmark/benchmark.h>

#include <memory>
#include <numeric>
#include <random>

#include "findTransform/2D/c2DCalculateTransform.h"
#include "orbitwalk/Engine.h"
#include "orbitwalk/MotionKernels.h"
#include "stabilization/iVideoStabilization.h"

namespace {

using Points = std::vector<cv::Point2f>;

struct Pairs {
    Points from, to;
};

/// As many pairs as a 1080p frame may have; two of three follow one motion.
Pairs pairs(int count) {
    std::mt19937 random(1);
    Pairs made;
    for (int i = 0; i < count; ++i) {
        made.from.emplace_back(static_cast<float>(random() % 288),
                               static_cast<float>(random() % 162));
        made.to.push_back(i % 3 == 0 ? cv::Point2f(static_cast<float>(random() % 288), 5)
                                     : made.from[i] + cv::Point2f(2, 1));
    }
    return made;
}

void estimateRigid(benchmark::State& state) {
    const Pairs given = pairs(static_cast<int>(state.range(0)));
    cv::Mat transform;
    for (auto _ : state)
        transform = cv::estimateRigidTransform(given.from, given.to, false);
    state.counters["tx"] = transform.empty() ? 0 : transform.at<double>(0, 2);
}
BENCHMARK(estimateRigid)->Arg(150)->Arg(400)->Unit(benchmark::kMicrosecond);

/// Tracks that return, with the displacements of the pairs.
void filterTracks(benchmark::State& state) {
    const Pairs given = pairs(static_cast<int>(state.range(0)));
    c2DCalculateTransform finder;
    Points prev, cur, back;
    for (auto _ : state) {
        prev = back = given.from;
        cur = given.to;
        finder.FilterkeyPoints(prev, cur, back);
    }
    state.counters["kept"] = static_cast<double>(cur.size());
}
BENCHMARK(filterTracks)->Arg(150)->Arg(400)->Unit(benchmark::kMicrosecond);

/// The whole of it: a hand's path in, smoothing, matrices out.
void stabilise(benchmark::State& state) {
    const int frames = static_cast<int>(state.range(0));
    __kelOBWKDXMetaData record{};
    for (auto _ : state) {
        std::mt19937 random(1);
        record = {};
        record.numFrames = record.endIndex = frames;
        record.maxFrames = OBW_MAX_FRAMES;
        record.viewAngleMaxFrames = OBW_MAX_BORDER_FRAMES;
        std::fill_n(record.renderFlag, frames, 1);
        const std::unique_ptr<iVideoStabilization> stabiliser(iVideoStabilization::Create());
        stabiliser->Initialize(1920, 1080);
        double x = 0;
        for (int i = 1; i < frames; ++i)
            stabiliser->sendTransformationMatrix(x -= 9 + static_cast<double>(random() % 100) / 25,
                                                 static_cast<double>(random() % 100) / 10, 0);
        stabiliser->doStabilization(0, OBW_DIRECTION_LEFT2RIGHT, 0, 0, 0, 0, true);
        stabiliser->getStabilizationInfo(&record, true);
    }
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&record);
    state.counters["record_sum"] =
        static_cast<double>(std::accumulate(bytes, bytes + sizeof record, 0L));
}
BENCHMARK(stabilise)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace
