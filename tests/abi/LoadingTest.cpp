#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/CommandOutput.h"
#include "support/TestDirectory.h"

namespace {

struct Loading : testing::Test {
    /// What the host prints; it must exit with 0.
    std::vector<std::string> runHost(const std::string& environment) const {
        return test_support::linesOf(environment + " " LOADING_HOST " " ENGINE_LIBRARY " " +
                                     (directory / "engine/ ").string() + mp4 + " 2>&1");
    }

    const test_support::TestDirectory directory;
    const std::string mp4 = directory / "out.mp4";
};

TEST_F(Loading, AFrameworkCapturesThroughDlsymAlone) {
    EXPECT_THAT(runHost(""),
                testing::ElementsAre("size 52808", "progress 15", "progress 30", "progress 45",
                                     "progress 60", "progress 75", "progress 90", "progress 100"));
    EXPECT_GT(test_support::contentOf(mp4).size(), 500u);
}

TEST_F(Loading, BothPlatformLibrariesAreReplacedWithoutRebuildingTheEngine) {
    EXPECT_THAT(runHost("LD_LIBRARY_PATH=" OTHER_LIBRARIES),
                testing::Contains("other platform: ORBITWALK_ENGINE_INTERFACE"));
    EXPECT_EQ(test_support::contentOf(mp4), "fffff");
}

}  // namespace
