#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <numeric>
#include <string>
#include <vector>

#include "Scene.h"
#include "orbitwalk/Engine.h"
#include "orbitwalk/MotionKernels.h"

namespace {

class Listener : public OBWEngineListener {
  public:
    void onProgress(int, int percent) override {
        if (percent == 100)
            mDone.set_value();
    }
    void wait() { mDone.get_future().wait(); }

  private:
    std::promise<void> mDone;
};

/// One started capture in a directory of its own.
class Capture {
  public:
    Capture(int width, int height) : mRecord(getSizeOrbitwalkInformation()) {
        mkdtemp(mDirectory.data());
        std::snprintf(localTmpDir, sizeof localTmpDir, "%s/", mDirectory.c_str());
        initOrbitwalkEngine(&mListener);
        _OBW_ENGINE_INIT_PARAM param{width, height, 0, mStream, mRecord.data(), false, 0};
        if (startOrbitwalkEngine(&param) != 1)
            std::abort();
    }
    ~Capture() {
        deinitOrbitwalkEngine();
        std::fclose(mStream);
    }

    void finish(std::vector<_ENCODING_FRAME_INFORMATION>& frames) {
        const int count = static_cast<int>(frames.size());
        stopOrbitwalkEngine(0, count - 1, frames.data(), count, OBW_DIRECTION_LEFT2RIGHT);
        mListener.wait();
    }
    long recordSum() const { return std::accumulate(mRecord.begin(), mRecord.end(), 0L); }

  private:
    Listener mListener;
    std::vector<unsigned char> mRecord;
    std::string mDirectory =
        (std::filesystem::temp_directory_path() / "orbitwalk-bench-XXXXXX").string();
    std::FILE* mStream = std::tmpfile();
};

void measureFrame(benchmark::State& state) {
    const int width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
    const auto frames = bench::panningFrames(width, height, 8);
    Capture capture(width, height);
    float x = 0, y = 0, a = 0;
    std::size_t n = 0;
    for (auto _ : state)
        getTrajectory(frames[n++ % frames.size()].data(), &x, &y, &a);
    state.counters["pixels_per_frame"] = static_cast<double>(x) / static_cast<double>(n);
}
BENCHMARK(measureFrame)
    ->Args({1280, 720})
    ->Args({1920, 1080})
    ->Args({3840, 2160})
    ->Unit(benchmark::kMillisecond);

void handOverFrame(benchmark::State& state) {
    const int width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
    const auto frames = bench::panningFrames(width, height, 1);
    Capture capture(width, height);
    int accepted = 0;
    for (auto _ : state)
        accepted += provideFrameandTrajectory(frames[0].data(), 0, 0, 0);
    state.counters["accepted"] = accepted;
}
BENCHMARK(handOverFrame)->Args({1920, 1080})->Iterations(200)->Unit(benchmark::kMicrosecond);

void stopToHundred(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    std::mt19937 random(1);
    std::vector<_ENCODING_FRAME_INFORMATION> kept(static_cast<std::size_t>(count));
    float x = 0;
    for (auto& info : kept)
        info = {x -= 9 + static_cast<float>(random() % 100) / 25,
                static_cast<float>(random() % 100) / 10,
                0,
                1,
                0,
                0};
    const std::vector<unsigned char> frame(64 * 48 * 3 / 2, 100);
    long sum = 0;
    for (auto _ : state) {
        state.PauseTiming();
        Capture capture(64, 48);
        provideFrameandTrajectory(frame.data(), 0, 0, 0);
        state.ResumeTiming();
        capture.finish(kept);
        state.PauseTiming();
        sum = capture.recordSum();
        state.ResumeTiming();
    }
    state.counters["record_sum"] = static_cast<double>(sum);
}
BENCHMARK(stopToHundred)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

void estimateRigid(benchmark::State& state) {
    std::mt19937 random(1);
    std::vector<cv::Point2f> from, to;
    for (int i = 0; i < 400; ++i) {
        from.emplace_back(static_cast<float>(random() % 288), static_cast<float>(random() % 162));
        const cv::Point2f moved = i % 3 == 0 ? cv::Point2f(static_cast<float>(random() % 288), 5)
                                             : from[i] + cv::Point2f(2, 1);
        to.push_back(moved);
    }
    cv::Mat transform;
    for (auto _ : state)
        transform = cv::estimateRigidTransform(from, to, false);
    state.counters["tx"] = transform.empty() ? 0 : transform.at<double>(0, 2);
}
BENCHMARK(estimateRigid)->Unit(benchmark::kMicrosecond);

}  // namespace
