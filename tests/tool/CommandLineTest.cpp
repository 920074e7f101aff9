#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

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
        RunOptions full;
        full.fullOutput = true;
        const ToolRun unprinted = runTool({command, "--help"}, full);
        EXPECT_EQ(unprinted.exitCode, 1) << command;
        EXPECT_THAT(unprinted.err, HasSubstr("cannot print the output: No space left"));
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
        const ToolRun run = runTool(c.arguments);
        EXPECT_EQ(run.exitCode, 2) << c.complaint;
        EXPECT_THAT(run.err, HasSubstr(c.complaint));
        EXPECT_EQ(std::ranges::count(run.err, '\n'), 1) << run.err;
        EXPECT_EQ(run.out, "");
    }
}

}  // namespace
}  // namespace test_support
