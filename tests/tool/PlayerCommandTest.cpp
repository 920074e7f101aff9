#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <nlohmann/json.hpp>

#include "files/PageText.h"
#include "player/PlayerPage.h"
#include "support/TestDirectory.h"
#include "tool/AnalyticSweep.h"
#include "tool/RunTool.h"

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

class PlayerCommand : public testing::Test {
  protected:
    PlayerCommand() { sweep.write(input); }

    ToolRun player(const std::string& output, std::vector<std::string> more = {}) const {
        more.insert(more.begin(), {"player", input.string(), "-o", output});
        return runTool(more);
    }

    const AnalyticSweep sweep{};
    const TestDirectory directory;
    const fs::path input = directory / "sweep";
    const std::string page = (directory / "p.html").string();
};

TEST_F(PlayerCommand, WritesThePageOfASweepAndSaysSo) {
    const ToolRun run = player(page);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("p.html: player of 10 frames"));
    for (const char* file : {"sweep.mp4", "sweep.obw"})
        EXPECT_THAT(contentOf(page),
                    HasSubstr(orbitwalk::tool::base64(contentOf(input / file)) + "</script>"));
    const auto summary = nlohmann::json::parse(player(page, {"--json"}).out);
    EXPECT_EQ(summary.at("frames"), AnalyticSweep::frames);
    EXPECT_EQ(summary.at("bytes"), fs::file_size(page));
}

TEST_F(PlayerCommand, SaysInOneLineWhatIsWrongAndLeavesNothing) {
    struct Case {
        std::function<void()> damage;
        std::string output;
        std::vector<std::string> more;
        const char* complaint;
        int exitCode = 1;
    };
    const TestDirectory whole;
    fs::copy(input, whole / "sweep");
    const auto nothing = [] {};
    const Case cases[] = {
        {[&] { writeFile(input / "sweep.obw", "short"); }, page, {}, "not a motion record"},
        {[&] { fs::remove(input / "sweep.mp4"); }, page, {}, "sweep.mp4: No such file"},
        {nothing, page, {"--refined"}, "there is no refinement"},
        {nothing, directory / "p.txt", {}, "does not end in .html", 2},
        {nothing, directory / "none" / "p.html", {}, "there is no directory"},
        {[&] { writeFile(input / "mine.html", "<p>"); }, input / "mine.html", {}, "did not write"},
    };
    for (const Case& c : cases) {
        fs::remove_all(input);
        fs::copy(whole / "sweep", input);
        c.damage();
        expectRefusal(player(c.output, c.more), c.complaint, c.exitCode);
        EXPECT_EQ(namesIn(directory / ""), std::vector<std::string>{"sweep"}) << c.complaint;
    }
}

}  // namespace
}  // namespace test_support
