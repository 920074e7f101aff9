#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/CommandOutput.h"

namespace {

using test_support::linesOf;

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
