#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "files/PageText.h"
#include "player/PlayerPage.h"
#include "tool/SweepFixture.h"

namespace test_support {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

TEST(PlayerPage, HoldsTheSweepAndLoadsNothing) {
    const std::string page = orbitwalk::tool::playerPage("<a> & {{b}}", "video", "record");
    for (const char* part : {"<title>&lt;a> &amp; {{b}}</title>", "default-src 'none'",
                             ">dmlkZW8=<", ">cmVjb3Jk<", "Mozilla Public License"})
        EXPECT_THAT(page, HasSubstr(part));
    for (const char* loading : {" src=", " href=", "url("})
        EXPECT_EQ(page.substr(0, page.find("<script>")).find(loading), std::string::npos);
    EXPECT_TRUE(page.ends_with("</html>\n"));
}

class PlayerCommand : public SweepFixture {
  protected:
    ToolRun player(std::vector<std::string> more = {}) const {
        more.insert(more.begin(), {"player", input, "-o", page});
        return runTool(more);
    }

    const std::string page = directory / "p.html";
};

TEST_F(PlayerCommand, WritesThePageOfASweepAndSaysSo) {
    const ToolRun run = player();
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("p.html: player of 10 frames"));
    for (const char* file : {"sweep.mp4", "sweep.obw"})
        EXPECT_THAT(contentOf(page),
                    HasSubstr(orbitwalk::tool::base64(contentOf(input / file)) + "</script>"));
    const auto summary = nlohmann::json::parse(player({"--json"}).out);
    EXPECT_EQ(summary.at("frames"), AnalyticSweep::frames);
    EXPECT_EQ(summary.at("bytes"), fs::file_size(page));
}

TEST_F(PlayerCommand, SaysInOneLineWhatIsWrongAndLeavesNothing) {
    const Refusal refusals[] = {
        {{"-o", page}, "not a motion record", [&] { writeFile(input / "sweep.obw", "short"); }},
        {{"-o", page}, "sweep.mp4: No such file", [&] { fs::remove(input / "sweep.mp4"); }},
        {{"-o", page, "--refined"}, "there is no refinement"},
        {{"-o", directory / "p.txt"}, "does not end in .html", [] {}, 2},
        {{"-o", directory / "none" / "p.html"}, "there is no directory"},
        {{"-o", input / "mine.html"},
         "did not write",
         [&] { writeFile(input / "mine.html", "<p>"); }},
    };
    expectRefusals("player", refusals);
}

}  // namespace
}  // namespace test_support
