// capture_raw WIDTH HEIGHT VIDEO RECORD < FRAMES
//
// A capture from C++. FRAMES are planar YUV 4:2:0, one after the other, as
// `ffmpeg -i CLIP -f rawvideo -pix_fmt yuv420p -` writes them. VIDEO receives the MP4 and RECORD
// the motion record.

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <future>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "orbitwalk/Engine.h"

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File create(const char* name) {
    if (std::FILE* file = std::fopen(name, "wb"))
        return {file, std::fclose};
    throw std::runtime_error(std::string(name) + ": cannot be written");
}

/// The engine is one for the process: this is who owns it.
class Engine : OBWEngineListener {
  public:
    Engine() {
        // The engine's own directory, which it empties: nobody else's.
        const std::string name = std::filesystem::temp_directory_path() / "capture_raw-XXXXXX";
        std::string path = name;
        if (mkdtemp(path.data()) == nullptr || path.size() + 2 > sizeof localTmpDir)
            throw std::runtime_error(name + ": cannot be made");
        std::strcpy(localTmpDir, (path + '/').c_str());
        if (initOrbitwalkEngine(this) != 1)
            throw std::runtime_error("no engine");
    }
    ~Engine() override { deinitOrbitwalkEngine(); }

    void start(_OBW_ENGINE_INIT_PARAM parameters) {
        if (startOrbitwalkEngine(&parameters) != 1)
            throw std::runtime_error("the engine does not start: the log says why");
    }

    void take(const std::vector<unsigned char>& frame) {
        _ENCODING_FRAME_INFORMATION info{};
        info.render = 1;
        getTrajectory(frame.data(), &info.x, &info.y, &info.a);
        if (provideFrameandTrajectory(frame.data(), info.x, info.y, info.a) != 1)
            throw std::runtime_error("a frame is not taken: the log says why");
        mFrames.push_back(info);
    }

    /// Returns when MP4 and record are there.
    const std::vector<_ENCODING_FRAME_INFORMATION>& stop() {
        const int count = static_cast<int>(mFrames.size());
        if (stopOrbitwalkEngine(0, count - 1, mFrames.data(), count, OBW_DIRECTION_LEFT2RIGHT) !=
                1 ||
            mDone.get_future().wait_for(std::chrono::minutes(5)) != std::future_status::ready)
            throw std::runtime_error("the sweep cannot be finished: the log says why");
        return mFrames;
    }

  private:
    void onProgress(int, int percent) override {
        std::cerr << percent << "%\n";
        if (percent == 100)
            mDone.set_value();
    }

    std::vector<_ENCODING_FRAME_INFORMATION> mFrames;
    std::promise<void> mDone;
};

void capture(int width, int height, const char* videoName, const char* recordName) {
    const File video = create(videoName), out = create(recordName);
    std::vector<unsigned char> record(OBW_METADATA_SIZE);
    _OBW_ENGINE_INIT_PARAM parameters{};
    parameters.imageWidth = width;
    parameters.imageHeight = height;
    parameters.fpMP4 = video.get();
    parameters.pWideReelInfo = record.data();

    Engine engine;
    engine.start(parameters);
    std::vector<unsigned char> frame(std::size_t(width) * height * 3 / 2);
    for (int i = 0; i < OBW_MAX_FRAMES && std::fread(frame.data(), frame.size(), 1, stdin) == 1;
         ++i)
        engine.take(frame);
    const auto& frames = engine.stop();
    if (std::fflush(video.get()) != 0)
        throw std::runtime_error(std::string(videoName) + ": cannot be written");
    if (std::fwrite(record.data(), record.size(), 1, out.get()) != 1 || std::fflush(out.get()) != 0)
        throw std::runtime_error(std::string(recordName) + ": cannot be written");
    std::printf("%zu frames, the last at %.2f %.2f pixels, %.5f radians\n", frames.size(),
                double(frames.back().x), double(frames.back().y), double(frames.back().a));
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 5)
        throw std::runtime_error("capture_raw WIDTH HEIGHT VIDEO RECORD < FRAMES");
    capture(std::atoi(argv[1]), std::atoi(argv[2]), argv[3], argv[4]);
} catch (const std::exception& error) {
    std::cerr << "capture_raw: " << error.what() << '\n';
    return 1;
}
