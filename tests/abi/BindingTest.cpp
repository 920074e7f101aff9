#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <vector>

#include "orbitwalk/Engine.h"
#include "orbitwalk/MotionKernels.h"
#include "support/FakePlatform.h"

extern int rivalEstimatorCalls;

namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 960;

class SilentListener : public OBWEngineListener {
  public:
    void onProgress(int, int) override {}
};

/// A smooth scene with corners everywhere, moved to the left by the given number of pixels: a tenth
/// less at the top and a tenth more at the bottom, because the finder drops the longer half of its
/// tracks.
std::vector<unsigned char> sceneMovedLeft(double pixels) {
    std::vector<unsigned char> frame(kWidth * kHeight * 3 / 2, 128);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            const double u = x + pixels * (0.9 + 0.2 * y / kHeight);
            const double value =
                std::sin(u * 0.05) * std::sin(y * 0.06) + 0.5 * std::sin(u * 0.031 + y * 0.047);
            frame[static_cast<std::size_t>(y) * kWidth + x] =
                static_cast<unsigned char>(128 + 80 * value);
        }
    return frame;
}

std::filesystem::path libraryOf(const void* symbol) {
    Dl_info info{};
    return dladdr(symbol, &info) != 0 ? std::filesystem::path(info.dli_fname).filename() : "";
}

TEST(Binding, TheEngineRunsItsOwnEstimatorWhateverTheProgramLinksFirst) {
    // The rival really is ahead: this program's own lookup of the name ends there.
    const void* found =
        dlsym(RTLD_DEFAULT, "_ZN2cv22estimateRigidTransformERKNS_11_InputArrayES2_b");
    ASSERT_EQ(libraryOf(found), "librival_estimator.so");

    std::string directory = std::filesystem::temp_directory_path() / "orbitwalk-binding-XXXXXX";
    ASSERT_NE(mkdtemp(directory.data()), nullptr);
    std::snprintf(localTmpDir, sizeof localTmpDir, "%s/", directory.c_str());
    std::FILE* mp4 = std::tmpfile();
    std::vector<unsigned char> record(getSizeOrbitwalkInformation());
    SilentListener listener;
    ASSERT_EQ(initOrbitwalkEngine(&listener), 1);
    _OBW_ENGINE_INIT_PARAM param{kWidth, kHeight, 0, mp4, record.data(), false, 0};
    ASSERT_EQ(startOrbitwalkEngine(&param), 1);

    float x = 0, y = 0, a = 0;
    for (int i = 0; i < 4; ++i)
        getTrajectory(sceneMovedLeft(6.0 * i).data(), &x, &y, &a);

    EXPECT_EQ(rivalEstimatorCalls, 0);
    EXPECT_NEAR(x, -18.0f, 1.8f) << "pixels; the rival's empty result would have left 0";
    cancelOrbitwalkEngine();
    deinitOrbitwalkEngine();
    std::fclose(mp4);
}

TEST(Binding, OpenCVsVideoModuleIsLoadedAheadOfTheEngine) {
    // Its deprecated function of the same name is what a phone's application may bring along.
    void* video = dlopen("libopencv_video.so.406", RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(video, nullptr);
    const void* deprecated = dlsym(video, "_ZN2cv22estimateRigidTransformERKNS_11_InputArrayES2_b");
    ASSERT_NE(deprecated, nullptr);
    EXPECT_FALSE(libraryOf(deprecated).string().starts_with("libOrbitwalkEngine.so"));
    dlclose(video);
}

}  // namespace
