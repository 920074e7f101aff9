#include <gtest/gtest.h>

#include <csignal>
#include <future>

#include "support/TestDirectory.h"
#include "sweep/Checksum.h"
#include "terminal/Print.h"
#include "terminal/ProgressBar.h"
#include "terminal/SignalGuard.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

TEST(Shown, SpellsOutWhatATerminalWouldObey) {
    struct Case {
        std::string text;
        const char* shown;
    };
    using namespace std::string_literals;
    const Case cases[] = {
        {"plain.mp4", "plain.mp4"},
        {"Prüfung 東京 🎥", "Prüfung 東京 🎥"},
        {"\x1b[2Ja\nb\tc\r\x7f", "\\x1b[2Ja\\nb\\tc\\x0d\\x7f"},
        {"a\0b"s, "a\\x00b"},
        {"\xc2\x9b"
         "1m",
         "\\u009b1m"},  // A control of its own in two bytes.
        {"\xe2\x80\xae"
         "gpj",
         "\\u202egpj"},                                // Writes from right to left.
        {"\xff \xc3", "\\xff \\xc3"},                  // No UTF-8, and a cut character.
        {"\xc0\x8a", "\\xc0\\x8a"},                    // A newline in a longer form than it has.
        {"\xed\xa0\x80", "\\xed\\xa0\\x80"},           // Half of a pair.
        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},  // Beyond the last character.
    };
    for (const Case& c : cases)
        EXPECT_EQ(shown(c.text), c.shown);
}

TEST(SignalGuard, EndsTheHashingOfAFile) {
    const test_support::TestDirectory directory;
    test_support::writeFile(directory / "file", "text");
    const SignalGuard guard;
    EXPECT_NO_THROW(sha256OfFile(directory / "file"));
    std::raise(SIGTERM);
    try {
        sha256OfFile(directory / "file");
        ADD_FAILURE() << "the whole file was read";
    } catch (const ToolError& error) {
        EXPECT_EQ(error.exitCode(), 128 + SIGTERM);
    }
}

TEST(SignalGuard, AbandonsWorkThatDoesNotLookForSignals) {
    const test_support::TestDirectory directory;
    const auto workForEver = [&] {
        test_support::writeFile(directory / "finished", "");
        test_support::writeFile(directory / "kept", "");
        test_support::writeFile(directory / "part", "");
        const SignalGuard guard;
        const Unfinished part(directory / "part");
        Unfinished(directory / "finished");
        Unfinished kept(directory / "kept");
        kept.keep(Unfinished::keepWhole());
        std::raise(SIGTERM);
        std::promise<void>().get_future().wait();
    };
    EXPECT_EXIT(workForEver(), testing::ExitedWithCode(128 + SIGTERM),
                "orbitwalk: interrupted .Terminated., nothing was kept");
    EXPECT_EQ(test_support::namesIn(directory / ""),
              (std::vector<std::string>{"finished", "kept"}));
}

TEST(ProgressLine, TellsFramesRateAndTimeLeftAndFits) {
    EXPECT_EQ(progressLine("Reading", 30, 120, 15, 80),
              "Reading [######..................] 30/120, 2.0/s, 0:45 left");
    EXPECT_EQ(progressLine("Reading", 30, 0, 15, 80), "Reading 30, 2.0/s");
    EXPECT_EQ(progressLine("Reading", 2, 20002, 4, 60), "Reading 2/20002, 0.5/s, 11:06:40 left");
    EXPECT_EQ(progressLine("Reading", 130, 120, 13, 80),
              "Reading [########################] 120/120, 9.2/s, 0:00 left");
    EXPECT_EQ(progressLine("Reading", 30, 120, 15, 28), "Reading 30/120, 0:45 left");
    EXPECT_EQ(progressLine("Reading", 30, 120, 15, 20), "Reading 30/120");
    for (int columns = 0; columns < 90; ++columns)
        EXPECT_LT(progressLine("Reading", 0, 120, 0, columns).size(), std::max(columns, 1));
}

}  // namespace
}  // namespace orbitwalk::tool
