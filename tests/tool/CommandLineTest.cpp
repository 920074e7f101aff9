#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tool/RunTool.h"

namespace test_support {
namespace {

using Arguments = std::vector<std::string>;
using testing::HasSubstr;

TEST(CommandLine, EveryCommandHasTheCommonOptions) {
    for (const char* command :
         {"capture", "evaluate", "inspect", "refine", "render", "report", "simulate"}) {
        const ToolRun help = runTool({command, "--help"});
        EXPECT_EQ(help.exitCode, 0) << command;
        for (const char* option : {"--json ", "-q,--quiet ", "-h,--help "})
            EXPECT_THAT(help.out, HasSubstr(option)) << command;
        const bool writes = std::string("inspect evaluate").find(command) == std::string::npos;
        EXPECT_EQ(help.out.find("--force ") != std::string::npos, writes) << command;
    }
}

TEST(CommandLine, WrongOptionsAreOneLineThatNamesThemAndEndWithTwo) {
    struct Case {
        Arguments arguments;
        const char* complaint;
    };
    const Case cases[] = {
        {{}, "A subcommand is required (see orbitwalk --help)"},
        {{"fly"}, "there is no command fly"},
        {{"--fly"}, "there is no option --fly (see orbitwalk --help)"},
        {{"capture", "--fly"}, "there is no option --fly (see orbitwalk capture --help)"},
        {{"capture", "v.mp4", "-o", "d", "--fly=3"}, "there is no option --fly=3"},
        {{"inspect", "r", "-x"}, "there is no option -x"},
        {{"inspect", "r", "s"}, "not expected: s"},
        {{"inspect", "r", "--a\nb\x1b"}, "there is no option --a b\\x1b"},
        {{"report", "d"}, "--output is required"},
        {{"report", "d", "-o", "r.pdf"}, "--output: r.pdf does not end in .html, .htm"},
    };
    for (const Case& c : cases) {
        expectRefusal(runTool(c.arguments), c.complaint, 2);
    }
}

}  // namespace
}  // namespace test_support
