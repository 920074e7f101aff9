#include <benchmark/benchmark.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <future>
#include <numeric>
#include <opencv2/core/utility.hpp>
#include <string>
#include <thread>
#include <vector>

#include "PlainMeasurement.h"
#include "Scene.h"
#include "orbitwalk/Engine.h"

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

/// Frames to measure: a scene of sines, or those of a file of planar frames of 1920x1080 with the
/// luma first, which ORBITWALK_BENCH_FRAMES names.
std::vector<std::vector<std::uint8_t>> frames1080() {
    const char* const path = std::getenv("ORBITWALK_BENCH_FRAMES");
    if (path == nullptr)
        return bench::panningFrames(1920, 1080, 40);
    std::vector<std::vector<std::uint8_t>> frames;
    std::ifstream file(path, std::ios::binary);
    for (std::vector<std::uint8_t> frame(1920 * 1080 * 3 / 2);
         frames.size() < 60 && file.read(reinterpret_cast<char*>(frame.data()), frame.size());)
        frames.push_back(frame);
    return frames;
}

double seconds(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

/// Of the frames that other programs disturbed least: what a tenth of them does not reach.
double firstDecile(std::vector<double> values) {
    const auto tenth = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 10);
    std::nth_element(values.begin(), tenth, values.end());
    return *tenth;
}

/// As many cores for this process, and threads for OpenCV. Whoever asks how many cores there are,
/// as a started engine does, sees these.
class Cores {
  public:
    explicit Cores(int count) {
        sched_getaffinity(0, sizeof mAll, &mAll);
        cpu_set_t some;
        CPU_ZERO(&some);
        for (int core = 0; CPU_COUNT(&some) < count && core < CPU_SETSIZE; ++core)
            if (CPU_ISSET(core, &mAll))
                CPU_SET(core, &some);
        sched_setaffinity(0, sizeof some, &some);
        cv::setNumThreads(count);
    }
    ~Cores() {
        sched_setaffinity(0, sizeof mAll, &mAll);
        cv::setNumThreads(-1);
    }

  private:
    cpu_set_t mAll;
};

/// As the entry point gives it, in single precision.
double sumOf(const orbitwalk::Trajectory& place) {
    return double{static_cast<float>(place.x)} + static_cast<float>(place.y) +
           static_cast<float>(place.a);
}

/// Until no other thread of the process runs or wants to: what a camera's time between two frames
/// is long enough for, unless other programs take the cores.
void awaitQuiet() {
    const auto self = std::to_string(gettid());
    const auto isBusy = [&](const std::filesystem::path& thread) {
        std::ifstream stat(thread / "stat");
        std::string text;
        std::getline(stat, text);
        const std::size_t name = text.rfind(')');
        return thread.filename() != self && name != std::string::npos && text[name + 2] == 'R';
    };
    do
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    while (std::ranges::any_of(std::filesystem::directory_iterator("/proc/self/task"),
                               [&](const auto& thread) { return isBusy(thread.path()); }));
}

/// The engine's whole call against OpenCV's calls alone, in turns frame by frame. On one core both
/// are the process's CPU time, which other programs change little. On two they are what a caller
/// waits, and what the engine does beside it after a call is done before the next one, as it is
/// between the frames of a camera.
void againstPlain(benchmark::State& state) {
    const Cores cores(static_cast<int>(state.range(0)));
    const clockid_t clock = state.range(0) == 1 ? CLOCK_PROCESS_CPUTIME_ID : CLOCK_MONOTONIC;
    const auto frames = frames1080();
    Capture capture(1920, 1080);
    bench::PlainMeasurement plain(1920, 1080, [&] { return seconds(clock); });
    std::vector<double> engineTimes, plainTimes;
    double engineSum = 0, plainSum = 0;
    for (auto _ : state) {
        const std::uint8_t* const frame = frames[engineTimes.size() % frames.size()].data();
        const orbitwalk::Trajectory expected = plain.measure(frame);
        plainSum += sumOf(expected);
        plainTimes.push_back(plain.seconds());
        float x = 0, y = 0, a = 0;
        const double begin = seconds(clock);
        getTrajectory(frame, &x, &y, &a);
        engineTimes.push_back(seconds(clock) - begin);
        engineSum += sumOf({x, y, a});
        state.SetIterationTime(engineTimes.back());
        if (state.range(0) > 1)
            awaitQuiet();
    }
    state.counters["ratio"] = firstDecile(engineTimes) / firstDecile(plainTimes);
    state.counters["engine_ms"] = 1000 * firstDecile(engineTimes);
    state.counters["plain_ms"] = 1000 * firstDecile(plainTimes);
    state.counters["corners"] = static_cast<double>(plain.corners() / engineTimes.size());
    state.counters["engine_sum"] = engineSum;
    state.counters["plain_sum"] = plainSum;
    if (engineSum != plainSum)
        state.SkipWithError("the trajectories differ");
}
BENCHMARK(againstPlain)
    ->ArgName("cores")
    ->Arg(2)  // first: OpenCV's threads are as many as the cores that it begins on
    ->Arg(1)
    ->Iterations(118)
    ->UseManualTime()
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

}  // namespace
