// What one machine makes of sweeps, to be held against what another makes of them.
//   play_sweep records              the records of random paths, one after the other
//   play_sweep path WIDTH HEIGHT < FRAMES
//                                   the trajectory of each planar YUV 4:2:0 frame, a line each

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string_view>
#include <thread>
#include <vector>

#include "orbitwalk/Engine.h"

namespace {

class Done : public OBWEngineListener {
  public:
    void onProgress(int, int percent) override { mPercent = percent; }
    void await() const {
        while (mPercent != 100)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    void begin() { mPercent = 0; }

  private:
    std::atomic<int> mPercent = 0;
};

using Frames = std::vector<_ENCODING_FRAME_INFORMATION>;

/// A hand's sweep. Only integers come from the standard library: its distributions may differ.
Frames randomPath(std::mt19937& random) {
    const auto uniform = [&random](double range) {
        return (static_cast<double>(random()) / 4294967296.0 - 0.5) * 2 * range;
    };
    Frames frames(2 + random() % 120);
    const double speedX = uniform(12), speedY = uniform(3);
    double x = 0, y = 0;
    for (_ENCODING_FRAME_INFORMATION& frame : frames) {
        frame = {static_cast<float>(x),
                 static_cast<float>(y),
                 static_cast<float>(uniform(0.02)),
                 1,
                 0,
                 0};
        frame.render = random() % 16 != 0;
        x += speedX + uniform(8);
        y += speedY + uniform(8);
    }
    return frames;
}

struct Engine {
    Engine() {
        std::strcpy(localTmpDir, "/tmp/play_sweep-XXXXXX");
        if (mkdtemp(localTmpDir) == nullptr)
            std::exit(1);
        std::strcat(localTmpDir, "/");
        if (initOrbitwalkEngine(&done) != 1)
            std::exit(1);
    }
    ~Engine() { deinitOrbitwalkEngine(); }

    void start(int width, int height) {
        _OBW_ENGINE_INIT_PARAM parameters{};
        parameters.imageWidth = width;
        parameters.imageHeight = height;
        parameters.fpMP4 = stderr;
        parameters.pWideReelInfo = record.data();
        if (startOrbitwalkEngine(&parameters) != 1)
            std::exit(1);
    }

    Done done;
    std::vector<unsigned char> record = std::vector<unsigned char>(OBW_METADATA_SIZE);
};

void writeRecords() {
    Engine engine;
    std::mt19937 random(20260601);
    const std::vector<unsigned char> picture(1920 * 1080 * 3 / 2);
    for (int i = 0; i < 60; ++i) {
        Frames frames = randomPath(random);
        engine.done.begin();
        engine.start(1920, 1080);
        const int count = static_cast<int>(frames.size());
        provideFrameandTrajectory(picture.data(), 0, 0, 0);
        if (stopOrbitwalkEngine(0, count - 1, frames.data(), count,
                                i % 2 == 0 ? OBW_DIRECTION_LEFT2RIGHT : OBW_DIRECTION_RIGHT2LEFT) !=
            1)
            std::exit(1);
        engine.done.await();
        std::fwrite(engine.record.data(), engine.record.size(), 1, stdout);
    }
}

void writePath(int width, int height) {
    Engine engine;
    engine.start(width, height);
    std::vector<unsigned char> frame(static_cast<std::size_t>(width) * height * 3 / 2);
    while (std::fread(frame.data(), frame.size(), 1, stdin) == 1) {
        float x = 0, y = 0, a = 0;
        getTrajectory(frame.data(), &x, &y, &a);
        std::printf("%.9g %.9g %.9g\n", double(x), double(y), double(a));
    }
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view what = argc > 1 ? argv[1] : "";
    if (what == "records")
        writeRecords();
    else if (what == "path" && argc == 4)
        writePath(std::atoi(argv[2]), std::atoi(argv[3]));
    else
        return 1;
}
