#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;

struct Output {
    int status;
    std::string text;
};

Output run(const std::string& command) {
    std::FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    std::string text;
    std::array<char, 4096> chunk;
    while (const auto n = std::fread(chunk.data(), 1, chunk.size(), pipe))
        text.append(chunk.data(), n);
    return {pclose(pipe), text};
}

class Loading : public testing::Test {
  protected:
    Loading() { mkdtemp(mDirectory.data()); }
    ~Loading() override { fs::remove_all(mDirectory); }

    fs::path mp4() const { return fs::path(mDirectory) / "out.mp4"; }
    Output runHost(const std::string& environment) const {
        return run(environment + " " LOADING_HOST " " ENGINE_LIBRARY " " + mDirectory +
                   "/engine/ " + mp4().string());
    }

  private:
    std::string mDirectory = (fs::temp_directory_path() / "orbitwalk-loading-XXXXXX").string();
};

TEST_F(Loading, AFrameworkCapturesThroughDlsymAlone) {
    const Output output = runHost("");
    EXPECT_EQ(output.status, 0) << output.text;
    EXPECT_EQ(
        output.text,
        "size 52808\nprogress 15\nprogress 30\nprogress 45\nprogress 60\nprogress 75\nprogress 90\n"
        "progress 100\n");
    EXPECT_GT(fs::file_size(mp4()), 500u);
}

TEST_F(Loading, BothPlatformLibrariesAreReplacedWithoutRebuildingTheEngine) {
    const Output output = runHost("LD_LIBRARY_PATH=" OTHER_LIBRARIES);
    EXPECT_EQ(output.status, 0) << output.text;
    EXPECT_NE(output.text.find("other platform: ORBITWALK_ENGINE_INTERFACE\n"), std::string::npos);
    std::ifstream file(mp4(), std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "fffff");
}

}  // namespace
