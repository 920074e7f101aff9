// A framework that loads the engine at run time and captures a few frames with it.
//   loading_host LIBRARY TEMPDIR OUTPUT.mp4
// Prints "size N" and "progress N" lines; exits with 0 when the capture reached 100.

#include <dlfcn.h>

#include <cstdio>
#include <cstring>
#include <future>
#include <vector>

#include "orbitwalk/Engine.h"

namespace {

class PrintingListener : public OBWEngineListener {
  public:
    void onProgress(int, int percent) override {
        std::printf("progress %d\n", percent);
        if (percent == 100)
            mDone.set_value();
    }
    void wait() { mDone.get_future().wait(); }

  private:
    std::promise<void> mDone;
};

template <class Function>
Function* symbol(void* library, const char* name) {
    void* address = dlsym(library, name);
    if (address == nullptr)
        std::printf("missing %s\n", name);
    return reinterpret_cast<Function*>(address);
}

int capture(void* library, const char* tempDir, std::FILE* mp4) {
    constexpr int frames = 5;
    const auto init = symbol<decltype(initOrbitwalkEngine)>(library, "initOrbitwalkEngine");
    const auto size =
        symbol<decltype(getSizeOrbitwalkInformation)>(library, "getSizeOrbitwalkInformation");
    const auto start = symbol<decltype(startOrbitwalkEngine)>(library, "startOrbitwalkEngine");
    const auto measure = symbol<decltype(getTrajectory)>(library, "getTrajectory");
    const auto provide =
        symbol<decltype(provideFrameandTrajectory)>(library, "provideFrameandTrajectory");
    const auto stop = symbol<decltype(stopOrbitwalkEngine)>(library, "stopOrbitwalkEngine");
    const auto deinit = symbol<decltype(deinitOrbitwalkEngine)>(library, "deinitOrbitwalkEngine");
    const auto print = symbol<decltype(printOBWMetaInfo)>(library, "printOBWMetaInfo");
    const auto flip = symbol<decltype(flipWarpMatrix)>(library, "flipWarpMatrix");
    const auto directory = symbol<char>(library, "localTmpDir");
    if (!init || !size || !start || !measure || !provide || !stop || !deinit || !print || !flip ||
        !directory)
        return 2;
    std::snprintf(directory, 200, "%s", tempDir);

    PrintingListener listener;
    std::vector<unsigned char> record(size());
    std::printf("size %d\n", size());
    _OBW_ENGINE_INIT_PARAM param{64, 48, 0, mp4, record.data(), false, 0};
    if (init(&listener) != 1 || start(&param) != 1)
        return 3;
    std::vector<unsigned char> frame(64 * 48 * 3 / 2, 100);
    std::vector<_ENCODING_FRAME_INFORMATION> kept(frames);
    for (auto& info : kept) {
        measure(frame.data(), &info.x, &info.y, &info.a);
        info.render = 1;
        if (provide(frame.data(), info.x, info.y, info.a) != 1)
            return 4;
    }
    if (stop(0, frames - 1, kept.data(), frames, OBW_DIRECTION_LEFT2RIGHT) != 1)
        return 5;
    listener.wait();
    deinit();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4)
        return 1;
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        std::printf("%s\n", dlerror());
        return 1;
    }
    std::FILE* mp4 = std::fopen(argv[3], "wb");
    const int result = capture(library, argv[2], mp4);
    std::fclose(mp4);
    dlclose(library);
    return result;
}
