#include <gtest/gtest.h>

#include <set>

#include "support/CommandOutput.h"

namespace {

/// Demangled names in a library's dynamic symbol table.
std::set<std::string> symbols(const std::string& options,
                              const std::string& library = ENGINE_LIBRARY) {
    const auto lines = test_support::linesOf("nm -D -C -j " + options + " " + library);
    return {lines.begin(), lines.end()};
}

TEST(SymbolTable, ExportsExactlyTheEntryPointsAndTheClassesOfTheSurface) {
    const auto lines = test_support::linesOf("cat " EXPORTS);
    const std::set<std::string> expected(lines.begin(), lines.end());
    const std::set<std::string> exported = symbols("--defined-only");
    for (const std::string& name : expected)
        EXPECT_TRUE(exported.contains(name)) << "not exported: " << name;
    for (const std::string& name : exported)
        EXPECT_TRUE(expected.contains(name)) << "exported: " << name;
    EXPECT_EQ(symbols("--defined-only", ENGINE_BY_LLD), exported)
        << "lld reads the list of exports in another way";
}

bool belongsToTheRuntime(const std::string& name) {
    // glibc's and libstdc++'s symbols carry a version, what the toolchain itself adds begins with
    // _ITM or __gmon.
    return name.find('@') != std::string::npos || name.starts_with("_ITM_") ||
           name == "__gmon_start__";
}

TEST(SymbolTable, NeedsExactlyFivePlatformCallsBeyondTheRuntimeAndOpenCV) {
    const std::set<std::string> expected = {"__android_log_print", "__system_property_get",
                                            "InitMP4Engine", "EncodeFrame", "DeInitMP4Engine"};
    std::set<std::string> needed;
    for (const std::string& name : symbols("--undefined-only"))
        if (!belongsToTheRuntime(name) && name.find("cv::") == std::string::npos)
            needed.insert(name);
    EXPECT_EQ(needed, expected);
}

}  // namespace
