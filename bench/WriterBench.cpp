#include <MP4Writer.h>
#include <benchmark/benchmark.h>

#include "Scene.h"

namespace {

/// The settings are the engine's own.
void encodeFrame(benchmark::State& state) {
    const int width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
    const auto frames = bench::panningFrames(width, height, 8);
    std::FILE* stream = std::tmpfile();
    InitMP4Engine(nullptr, "", width, height, 0, 16777216, 15, 30, 7, -1, stream);
    std::size_t n = 0;
    int encoded = 0;
    for (auto _ : state)
        encoded += EncodeFrame(frames[n++ % frames.size()].data());
    DeInitMP4Engine();
    state.counters["encoded"] = encoded;
    state.counters["bytes"] = static_cast<double>(std::ftell(stream));
    std::fclose(stream);
}
BENCHMARK(encodeFrame)
    ->Args({1280, 720})
    ->Args({1920, 1080})
    ->Iterations(120)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
