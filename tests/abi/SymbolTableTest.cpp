#include <gtest/gtest.h>

#include <set>

#include "support/CommandOutput.h"

namespace {

/// Demangled names in the library's dynamic symbol table.
std::set<std::string> symbols(const std::string& options) {
    const auto lines = test_support::linesOf("nm -D -C -j " + options + " " ENGINE_LIBRARY);
    return {lines.begin(), lines.end()};
}

TEST(SymbolTable, ExportsExactlyTheEntryPointsAndTheClassesOfTheSurface) {
    const std::set<std::string> expected = {
        "initOrbitwalkEngine",
        "getSizeOrbitwalkInformation",
        "startOrbitwalkEngine",
        "getTrajectory",
        "provideFrameandTrajectory",
        "stopOrbitwalkEngine",
        "resetOrbitwalkEngine",
        "cancelOrbitwalkEngine",
        "deinitOrbitwalkEngine",
        "printOBWMetaInfo",
        "flipWarpMatrix",
        "localTmpDir",
        "CSharedMemory::CSharedMemory(unsigned int)",
        "CSharedMemory::CSharedMemory(unsigned int, unsigned int)",
        "CSharedMemory::~CSharedMemory()",
        "CSharedMemory::lockForWriting()",
        "CSharedMemory::lockForReading()",
        "CSharedMemory::unlockForWriting()",
        "CSharedMemory::unlockForReading()",
        "CSharedBufferQueue::CSharedBufferQueue(int, int)",
        "CSharedBufferQueue::CSharedBufferQueue(int, int, unsigned int)",
        "CSharedBufferQueue::~CSharedBufferQueue()",
        "CSharedBufferQueue::lockForReading()",
        "CSharedBufferQueue::unlockForWriting()",
        "CSharedBufferQueue::lockForWriting()",
        "CSharedBufferQueue::unlockForReading()",
        "CSharedBufferQueue::size()",
        "vtable for CSharedMemory",
        "vtable for CSharedBufferQueue",
        "typeinfo for CSharedMemory",
        "typeinfo for CSharedBufferQueue",
        "typeinfo for CSharedBufferInterface",
        "typeinfo name for CSharedMemory",
        "typeinfo name for CSharedBufferQueue",
        "typeinfo name for CSharedBufferInterface",
        "cv::estimateRigidTransform(cv::_InputArray const&, cv::_InputArray const&, bool)",
        "NURV::buildOpticalFlowPyramid(cv::_InputArray const&, cv::_OutputArray const&, "
        "cv::Size_<int>, int, "
        "bool, int, int, bool)",
        "NURV::calcOpticalFlowPyrLK(cv::_InputArray const&, cv::_InputArray const&, "
        "cv::_InputArray const&, "
        "cv::_InputOutputArray const&, cv::_OutputArray const&, cv::_OutputArray const&, "
        "cv::Size_<int>, int, "
        "cv::TermCriteria, int, double)",
        "NURV::goodFeaturesToTrack(cv::_InputArray const&, cv::_OutputArray const&, int, double, "
        "double, "
        "cv::_InputArray const&, int, bool, double)",
    };
    const std::set<std::string> exported = symbols("--defined-only");
    for (const std::string& name : expected)
        EXPECT_TRUE(exported.contains(name)) << "not exported: " << name;
    for (const std::string& name : exported)
        EXPECT_TRUE(expected.contains(name)) << "exported: " << name;
}

bool belongsToTheRuntime(const std::string& name) {
    // glibc's and libstdc++'s symbols carry a version, what the toolchain itself adds begins with
    // _ITM or __gmon.
    return name.find('@') != std::string::npos || name.starts_with("_ITM_") ||
           name == "__gmon_start__";
}

TEST(SymbolTable, NeedsExactlyFivePlatformCallsBeyondTheRuntimeAndOpenCV) {
#ifdef ORBITWALK_SANITIZED
    GTEST_SKIP() << "a sanitizer adds imports of its own";
#endif
    const std::set<std::string> expected = {"__android_log_print", "__system_property_get",
                                            "InitMP4Engine", "EncodeFrame", "DeInitMP4Engine"};
    std::set<std::string> needed;
    for (const std::string& name : symbols("--undefined-only"))
        if (!belongsToTheRuntime(name) && name.find("cv::") == std::string::npos)
            needed.insert(name);
    EXPECT_EQ(needed, expected);
}

}  // namespace
