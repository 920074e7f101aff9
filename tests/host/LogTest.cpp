#include <OrbitwalkPlatform.h>
#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <set>

#include "support/CommandOutput.h"
#include "support/TestDirectory.h"

namespace {

using test_support::linesOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using Lines = std::vector<std::string>;

/// What the probe prints on stdout and stderr under an environment.
Lines probe(const std::string& environment, const std::string& task = "priorities") {
    return linesOf("env -u ORBITWALK_LOG_LEVEL -u ORBITWALK_LOG_FILE " + environment +
                   " " LOG_PROBE " " + task + " 2>&1");
}

struct LogFile : testing::Test {
    Lines lines() const { return linesOf("cat " + path); }

    const test_support::TestDirectory directory;
    const std::string path = directory / "log";
};

TEST(Log, IsQuietUnlessTheEnvironmentOpensIt) {
    EXPECT_THAT(probe(""), ElementsAre());
    EXPECT_THAT(probe("ORBITWALK_LOG_LEVEL="), ElementsAre());
    EXPECT_THAT(probe("ORBITWALK_LOG_LEVEL=off"), ElementsAre());
}

TEST(Log, WritesFromTheLevelUpWithPriorityAndTagAndOneNewline) {
    EXPECT_THAT(probe("ORBITWALK_LOG_LEVEL=warn"),
                ElementsAre(EndsWith(" W A_TAG: line 5"), EndsWith(" E A_TAG: line 6"),
                            EndsWith(" F A_TAG: line 7")));
    EXPECT_THAT(probe("ORBITWALK_LOG_LEVEL=verbose"),
                ElementsAre(EndsWith(" V A_TAG: line 2"), EndsWith(" D A_TAG: line 3"),
                            EndsWith(" I A_TAG: line 4"), EndsWith(" W A_TAG: line 5"),
                            EndsWith(" E A_TAG: line 6"), EndsWith(" F A_TAG: line 7")));
    EXPECT_EQ(probe("ORBITWALK_LOG_LEVEL=debug").size(), 5u);
    EXPECT_EQ(probe("ORBITWALK_LOG_LEVEL=info").size(), 4u);
    EXPECT_EQ(probe("ORBITWALK_LOG_LEVEL=error").size(), 2u);
}

TEST(Log, TheHostsLevelOverridesTheEnvironments) {
    for (const char* environment : {"", "ORBITWALK_LOG_LEVEL=verbose"})
        EXPECT_THAT(probe(environment, "raised"),
                    ElementsAre(EndsWith("line 6"), EndsWith("line 7")));
}

TEST(Log, AnUnknownLevelIsSaidAndLeavesItQuiet) {
    EXPECT_THAT(probe("ORBITWALK_LOG_LEVEL=loud"), ElementsAre(HasSubstr("\"loud\"")));
}

TEST_F(LogFile, IsAppendedToInPlaceOfStderr) {
    const std::string environment = "ORBITWALK_LOG_LEVEL=error ORBITWALK_LOG_FILE=" + path;
    EXPECT_THAT(probe(environment), ElementsAre());
    EXPECT_THAT(probe(environment), ElementsAre());
    EXPECT_THAT(lines(), ElementsAre(EndsWith("line 6"), EndsWith("line 7"), EndsWith("line 6"),
                                     EndsWith("line 7")));
}

TEST_F(LogFile, LinesOfSeveralThreadsStayWhole) {
    probe("ORBITWALK_LOG_LEVEL=info ORBITWALK_LOG_FILE=" + path, "threads");
    std::set<std::string> texts;
    for (const std::string& line : lines()) {
        EXPECT_THAT(line, MatchesRegex(".* I A_TAG: thread [0-3] line [0-9]+"));
        texts.insert(line.substr(line.find("A_TAG")));
    }
    EXPECT_EQ(texts.size(), 400u);
}

TEST_F(LogFile, ThatCannotBeWrittenIsSaidOnce) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    for (const std::string& file :
         {std::string("/dev/full"), std::string("/proc/nowhere/log"), path})
        EXPECT_THAT(probe("ORBITWALK_LOG_LEVEL=verbose ORBITWALK_LOG_FILE=" + file),
                    ElementsAre(HasSubstr(file)));
}

struct Heard {
    int priority;
    std::string tag, text;
    friend bool operator==(const Heard&, const Heard&) = default;
};

void hear(int priority, const char* tag, const char* text, void* heard) {
    static_cast<std::vector<Heard>*>(heard)->push_back({priority, tag, text});
}

TEST(LogListener, HearsEveryLineWholeWhateverTheLevel) {
    std::vector<Heard> heard;
    OrbitwalkSetLogListener(hear, &heard);
    const std::string longText(100'000, 'x');
    EXPECT_GT(__android_log_print(ANDROID_LOG_VERBOSE, "TAG", "%s\n", longText.c_str()), 0);
    EXPECT_GT(__android_log_print(ANDROID_LOG_INFO, nullptr, "no tag, two newlines\n\n"), 0);
    int (*const unchecked)(int, const char*, const char*, ...) = __android_log_print;
    EXPECT_EQ(unchecked(ANDROID_LOG_INFO, "TAG", nullptr), 0);
    OrbitwalkSetLogListener(nullptr, nullptr);
    EXPECT_EQ(__android_log_print(ANDROID_LOG_FATAL, "TAG", "unheard"), 0);
    EXPECT_THAT(heard, ElementsAre(Heard{ANDROID_LOG_VERBOSE, "TAG", longText},
                                   Heard{ANDROID_LOG_INFO, "", "no tag, two newlines\n"}));
}

}  // namespace
