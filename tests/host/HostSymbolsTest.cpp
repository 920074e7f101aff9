#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

/// Lines that a command prints.
std::vector<std::string> linesOf(const std::string& command) {
    std::FILE* pipe = popen(command.c_str(), "r");
    std::vector<std::string> lines;
    char line[4096];
    while (std::fgets(line, sizeof line, pipe) != nullptr)
        lines.emplace_back(line, std::string(line).find_last_not_of('\n') + 1);
    EXPECT_EQ(pclose(pipe), 0);
    return lines;
}

TEST(HostSymbols, EachLibraryExportsItsCallsAndNothingElse) {
    EXPECT_THAT(linesOf("nm -D -j --defined-only " PLATFORM_LIBRARY),
                testing::UnorderedElementsAre("__android_log_print", "__system_property_get",
                                              "OrbitwalkSetLogListener", "OrbitwalkSetLogLevel"));
    EXPECT_THAT(linesOf("nm -D -j --defined-only " WRITER_LIBRARY),
                testing::UnorderedElementsAre("InitMP4Engine", "EncodeFrame", "DeInitMP4Engine",
                                              "WaitMP4EngineFrames"));
}

TEST(HostSymbols, EachLibraryIsFoundByANameThatAnotherCanTake) {
    EXPECT_THAT(linesOf("readelf -d " PLATFORM_LIBRARY " | grep SONAME"),
                testing::ElementsAre(testing::HasSubstr("[libOrbitwalkPlatform.so]")));
    EXPECT_THAT(linesOf("readelf -d " WRITER_LIBRARY " | grep SONAME"),
                testing::ElementsAre(testing::HasSubstr("[libOrbitwalkMP4Writer.so]")));
    // RPATH, unlike RUNPATH, would come before LD_LIBRARY_PATH.
    EXPECT_THAT(linesOf("readelf -d " WRITER_LIBRARY " | grep -c '(RPATH)' || true"),
                testing::ElementsAre("0"));
}

}  // namespace
