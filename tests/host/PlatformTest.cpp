#include <OrbitwalkPlatform.h>
#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/system_properties.h>

#include <cstdlib>
#include <set>

#include "common/Log.h"
#include "support/CommandOutput.h"
#include "support/TestDirectory.h"

namespace {

using test_support::linesOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::UnorderedElementsAre;
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

TEST(Log, WritesFromTheLevelUpWithPriorityAndTagAndOneNewline) {
    const Lines all{"V A_TAG: line 2", "D A_TAG: line 3", "I A_TAG: line 4",
                    "W A_TAG: line 5", "E A_TAG: line 6", "F A_TAG: line 7"};
    const struct {
        const char* level;
        std::size_t lines;
        const char* task = "priorities";
    } cases[] = {{"verbose", 6},   {"debug", 5}, {"info", 4}, {"warn", 3},
                 {"error", 2},     {"", 0},      {"off", 0},  {"verbose", 2, "raised"},
                 {"", 2, "raised"}};
    for (const auto& c : cases) {
        const Lines said = probe(std::string("ORBITWALK_LOG_LEVEL=") + c.level, c.task);
        ASSERT_EQ(said.size(), c.lines) << c.level;
        for (std::size_t i = 0; i < c.lines; ++i)
            EXPECT_THAT(said[i], EndsWith(" " + all[all.size() - c.lines + i]));
    }
    EXPECT_THAT(probe(""), ElementsAre());
    EXPECT_THAT(probe("ORBITWALK_LOG_LEVEL=loud"), ElementsAre(HasSubstr("\"loud\"")));
}

TEST(Log, ComputesNoValueThatNobodyHears) {
    constexpr char kLogTag[] = "A_TAG";
    int computed = 0;
    logInfo("%d", ++computed);
    EXPECT_EQ(computed, 0) << "quiet by default";
    int heard = 0;
    OrbitwalkSetLogListener(
        [](int, const char*, const char*, void* count) { ++*static_cast<int*>(count); }, &heard);
    logInfo("%d", ++computed);
    OrbitwalkSetLogListener(nullptr, nullptr);
    EXPECT_EQ(computed, 1);
    EXPECT_EQ(heard, 1);
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

std::string property(const char* name) {
    char value[PROP_VALUE_MAX];
    const int length = __system_property_get(name, value);
    EXPECT_EQ(std::string(value).size(), std::size_t(length));
    return value;
}

TEST(SystemProperty, BuildTypeComesFromTheEnvironment) {
    unsetenv("ORBITWALK_BUILD_TYPE");
    EXPECT_EQ(property("ro.build.type"), "user");
    setenv("ORBITWALK_BUILD_TYPE", "eng", 1);
    EXPECT_EQ(property("ro.build.type"), "eng");
    setenv("ORBITWALK_BUILD_TYPE", std::string(500, 'x').c_str(), 1);
    EXPECT_EQ(property("ro.build.type"), std::string(PROP_VALUE_MAX - 1, 'x'));
    unsetenv("ORBITWALK_BUILD_TYPE");
}

TEST(SystemProperty, OthersAreEmptyAndNullsAreHarmless) {
    EXPECT_EQ(property("ro.product.model"), "");
    EXPECT_EQ(property(nullptr), "");
    EXPECT_EQ(__system_property_get("ro.build.type", nullptr), 0);
}

TEST(HostSymbols, EachLibraryExportsItsCallsAndNothingElse) {
    EXPECT_THAT(linesOf("nm -D -j --defined-only " PLATFORM_LIBRARY),
                UnorderedElementsAre("__android_log_is_loggable", "__android_log_print",
                                     "__system_property_get", "OrbitwalkSetLogListener",
                                     "OrbitwalkSetLogLevel"));
    EXPECT_THAT(linesOf("nm -D -j --defined-only " WRITER_LIBRARY),
                UnorderedElementsAre("InitMP4Engine", "EncodeFrame", "DeInitMP4Engine",
                                     "WaitMP4EngineFrames"));
}

TEST(HostSymbols, EachLibraryIsFoundByANameThatAnotherCanTake) {
    EXPECT_THAT(linesOf("readelf -d " PLATFORM_LIBRARY " | grep SONAME"),
                ElementsAre(HasSubstr("[libOrbitwalkPlatform.so.1]")));
    EXPECT_THAT(linesOf("readelf -d " WRITER_LIBRARY " | grep SONAME"),
                ElementsAre(HasSubstr("[libOrbitwalkMP4Writer.so.1]")));
    // RPATH, unlike RUNPATH, would come before LD_LIBRARY_PATH.
    EXPECT_THAT(linesOf("readelf -d " WRITER_LIBRARY " | grep -c '(RPATH)' || true"),
                ElementsAre("0"));
}

}  // namespace
