#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "files/OwnFiles.h"
#include "files/TextFile.h"
#include "support/TestDirectory.h"
#include "terminal/SignalGuard.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

using test_support::TestDirectory;

TEST(TextFile, IsReadUpToItsLimit) {
    const TestDirectory dir;
    test_support::writeFile(dir / "t", "12345678");
    EXPECT_EQ(readTextFile(dir / "t", 8), "12345678");
    EXPECT_THROW(readTextFile(dir / "t", 7), ToolError);
    EXPECT_EQ(readFileUpTo(dir / "t", 7), "1234567");
    EXPECT_THROW(readTextFile("/dev/zero", 100), ToolError);
    EXPECT_THROW(readTextFile(dir / ""), ToolError);
}

TEST(TextFile, MayBeAPipe) {
    const TestDirectory dir;
    ASSERT_EQ(mkfifo((dir / "fifo").c_str(), 0600), 0);
    const std::string text(200000, 't');
    std::jthread writer([&] { std::ofstream(dir / "fifo") << text; });
    EXPECT_EQ(readTextFile(dir / "fifo"), text);
}

TEST(TextFile, ASignalEndsTheWaitForAPipe) {
    const TestDirectory dir;
    ASSERT_EQ(mkfifo((dir / "fifo").c_str(), 0600), 0);
    const SignalGuard guard;
    const auto start = std::chrono::steady_clock::now();
    std::jthread other([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        raise(SIGTERM);
    });
    try {
        readTextFile(dir / "fifo");
        FAIL();
    } catch (const ToolError& error) {
        EXPECT_EQ(error.exitCode(), 128 + SIGTERM);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST(Extension, IsOneOfTheNamedOnes) {
    EXPECT_NO_THROW(requireExtension("-o", "a/b.MP4", {".mov", ".mp4"}));
    for (const char* file : {"b.avi", "mp4", "b.mp4.txt", ".mp4", "", "b."})
        EXPECT_THROW(requireExtension("-o", file, {".mov", ".mp4"}), UsageError) << file;
}

}  // namespace
}  // namespace orbitwalk::tool
