#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <vector>

#include "findTransform/Scene.h"
#include "orbitwalk/Engine.h"
#include "orbitwalk/MotionKernels.h"
#include "support/FakePlatform.h"
#include "support/TestDirectory.h"

extern int rivalEstimatorCalls;

namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 960;

class SilentListener : public OBWEngineListener {
  public:
    void onProgress(int, int) override {}
};

std::filesystem::path libraryOf(const void* symbol) {
    Dl_info info{};
    return dladdr(symbol, &info) != 0 ? std::filesystem::path(info.dli_fname).filename() : "";
}

TEST(Binding, TheEngineRunsItsOwnEstimatorWhateverTheProgramLinksFirst) {
    // The rival really is ahead: this program's own lookup of the name ends there.
    const void* found =
        dlsym(RTLD_DEFAULT, "_ZN2cv22estimateRigidTransformERKNS_11_InputArrayES2_b");
    ASSERT_EQ(libraryOf(found), "librival_estimator.so");
    // So is OpenCV's module with its deprecated function, which a phone's application may bring.
    ASSERT_NE(dlopen("libopencv_video.so.406", RTLD_NOW | RTLD_NOLOAD), nullptr);

    const test_support::TestDirectory directory;
    std::snprintf(localTmpDir, sizeof localTmpDir, "%s/", (directory / "work").c_str());
    std::FILE* mp4 = std::tmpfile();
    std::vector<unsigned char> record(getSizeOrbitwalkInformation());
    SilentListener listener;
    ASSERT_EQ(initOrbitwalkEngine(&listener), 1);
    _OBW_ENGINE_INIT_PARAM param{kWidth, kHeight, 0, mp4, record.data(), false, 0};
    ASSERT_EQ(startOrbitwalkEngine(&param), 1);

    float x = 0, y = 0, a = 0;
    for (int i = 0; i < 4; ++i)
        getTrajectory(Scene().frame(kWidth, kHeight, {-6.0 * i, 0, 0}).data(), &x, &y, &a);

    EXPECT_EQ(rivalEstimatorCalls, 0);
    EXPECT_GT(fake_platform::countLog("getTrajectory : E"), 0)
        << "the program's log, which cannot say whether it is heard; the host's would be quiet";
    EXPECT_NEAR(x, -18.0f, 1.8f) << "pixels; the rival's empty result would have left 0";
    cancelOrbitwalkEngine();
    deinitOrbitwalkEngine();
    std::fclose(mp4);
}

}  // namespace
