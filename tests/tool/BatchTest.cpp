#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <nlohmann/json.hpp>

#include "support/TestDirectory.h"
#include "tool/RunTool.h"

namespace {

using namespace test_support;
using testing::HasSubstr;
using testing::IsEmpty;

ino_t inodeOf(const std::filesystem::path& path) {
    struct stat facts {};
    return stat(path.c_str(), &facts) == 0 ? facts.st_ino : 0;
}

/// Short clips, a manifest of them and a folder for the results.
class Batch : public testing::Test {
  protected:
    /// @param rows  of the columns id, video, refine and evaluate.
    void write(const std::string& rows) {
        writeFile(mDirectory / "clips.csv", "id,video,refine,evaluate\n" + rows);
    }
    void simulate(const std::string& name, int seed, int frames = 3) {
        ASSERT_EQ(runTool({"simulate", "-o", mDirectory / name, "--size", "128x96", "--frames",
                           std::to_string(frames), "--seed", std::to_string(seed)})
                      .exitCode,
                  0);
    }
    ToolRun run(const std::vector<std::string>& more = {}, const RunOptions& options = {}) {
        std::vector<std::string> arguments{"batch", mDirectory / "clips.csv", "-o", mOut, "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runTool(arguments, options);
    }
    /// Starts a batch in a shell as $p, and runs the script beside it.
    ToolRun runBeside(const std::string& script) {
        const std::string batch =
            toolPath() + " batch " + (mDirectory / "clips.csv").string() + " -o " + mOut.string();
        return runProgram("/bin/sh", {"-ec", "cd " + (mDirectory / "").string() + "; " + batch +
                                                 " & p=$!; " + script});
    }
    nlohmann::json clip(const std::string& id) const {
        const auto summary = nlohmann::json::parse(contentOf(mOut / "summary.json"));
        for (const auto& one : summary.at("clips"))
            if (one.at("id") == id)
                return one;
        return {};
    }
    void expectNothingHalfMade() const { EXPECT_THAT(namesIn(mOut / ".work"), IsEmpty()); }

    const TestDirectory mDirectory;
    const std::filesystem::path mOut = mDirectory / "out";
};

TEST_F(Batch, MakesWhatIsNotMadeAndTellsWhatFailed) {
    simulate("a.mp4", 1);
    simulate("b.mp4", 2);
    writeFile(mDirectory / "torn.mp4", contentOf(mDirectory / "a.mp4").substr(0, 2000));
    write("a,a.mp4,yes,yes\ntorn,torn.mp4,,\nb,b.mp4,,\ngone,gone.mp4,,\n");

    const ToolRun first = run({"--jobs", "2"});
    EXPECT_EQ(first.exitCode, 1);
    const auto counts = nlohmann::json::parse(first.out);
    EXPECT_EQ(counts.at("made"), 2);
    EXPECT_EQ(counts.at("failed"), 2);
    for (const char* name : {"sweep.obw", "refined.obw", "strip.png", "report.html", "player.html",
                             "evaluation.json", "clip.json", "messages.txt"})
        EXPECT_TRUE(exists(mOut / "a" / name)) << name;
    EXPECT_EQ(clip("a").at("result").at("frames"), 3);
    EXPECT_TRUE(clip("a").at("result").contains("refined"));
    EXPECT_THAT(clip("torn").at("error"), HasSubstr("torn.mp4"));
    EXPECT_THAT(contentOf(mOut / "torn.error.txt"), HasSubstr("orbitwalk capture"));
    EXPECT_THAT(clip("gone").at("error"), HasSubstr("gone.mp4"));
    EXPECT_THAT(contentOf(mOut / "summary.csv"), HasSubstr("\nb,done,3,"));
    const std::string page = contentOf(mOut / "index.html");
    EXPECT_THAT(page, HasSubstr("a/player.html"));
    EXPECT_THAT(page, HasSubstr("2 done, 2 failed, 0 waiting"));
    expectNothingHalfMade();

    // Mended, changed in its options, changed in its video; and one that stays.
    const ino_t a = inodeOf(mOut / "a"), b = inodeOf(mOut / "b");
    std::filesystem::remove(mDirectory / "torn.mp4");
    simulate("torn.mp4", 3);
    simulate("gone.mp4", 4);
    EXPECT_EQ(run().exitCode, 0);
    EXPECT_FALSE(exists(mOut / "torn.error.txt"));
    EXPECT_EQ(inodeOf(mOut / "a"), a);
    simulate("gone.mp4", 5);
    write("a,a.mp4,yes,yes\ntorn,torn.mp4,,\nb,b.mp4,--keep 0.9,\ngone,gone.mp4,,\n");
    EXPECT_EQ(nlohmann::json::parse(run().out).at("made"), 2);
    EXPECT_EQ(inodeOf(mOut / "a"), a);
    EXPECT_NE(inodeOf(mOut / "b"), b);
    EXPECT_TRUE(exists(mOut / "b" / "refined.obw"));
    std::filesystem::remove(mOut / "a" / "report.html");
    EXPECT_EQ(nlohmann::json::parse(run().out).at("made"), 1);
}

TEST_F(Batch, GoesOnWhereItWasEnded) {
    for (const char* id : {"a", "b", "c"})
        simulate(std::string(id) + ".mp4", *id);
    write("a,a.mp4,,\nb,b.mp4,,\nc,c.mp4,,\n");
    for (const int signal : {SIGKILL, SIGTERM}) {
        std::filesystem::remove_all(mOut);
        const std::string number = std::to_string(signal);
        EXPECT_EQ(
            runBeside("until [ -e out/a/clip.json ]; do kill -0 $p; sleep 0.01; done; kill -" +
                      number + " $p; wait $p")
                .exitCode,
            128 + signal);
        for (const std::string& name : namesIn(mOut))
            EXPECT_TRUE(name == ".work" || !is_directory(mOut / name) ||
                        exists(mOut / name / "clip.json"))
                << name;
        if (signal == SIGTERM)
            expectNothingHalfMade();
        const ino_t a = inodeOf(mOut / "a");
        EXPECT_EQ(run().exitCode, 0);
        EXPECT_EQ(inodeOf(mOut / "a"), a);
        EXPECT_EQ(clip("c").at("state"), "done");
        expectNothingHalfMade();
    }
}

TEST_F(Batch, LosesOneClipToACrash) {
    simulate("a.mp4", 1, 60);
    simulate("b.mp4", 2);
    write("a,a.mp4,,\nb,b.mp4,,\n");
    EXPECT_EQ(runBeside("while c=$(cat /proc/$p/task/$p/children) && [ -z \"$c\" ]; do "
                        "sleep 0.01; done; kill -9 $c; wait $p")
                  .exitCode,
              1);
    EXPECT_THAT(clip("a").at("error"), HasSubstr("signal 9"));
    EXPECT_EQ(clip("b").at("state"), "done");
    expectNothingHalfMade();
}

TEST_F(Batch, SharesAFolderBetweenShards) {
    for (const char* id : {"a", "b", "c"})
        simulate(std::string(id) + ".mp4", *id);
    write("a,a.mp4,,\nb,b.mp4,yes,\nc,c.mp4,,\n");
    ASSERT_EQ(run({"--shard", "0/2"}).exitCode, 0);
    EXPECT_EQ(clip("b").at("state"), "waiting");
    ASSERT_EQ(nlohmann::json::parse(run({"--shard", "1/2"}).out).at("made"), 1);
    const std::string csv = contentOf(mOut / "summary.csv");
    const std::string json = contentOf(mOut / "summary.json");
    std::filesystem::remove_all(mOut);
    ASSERT_EQ(run().exitCode, 0);
    EXPECT_EQ(contentOf(mOut / "summary.csv"), csv);
    EXPECT_EQ(contentOf(mOut / "summary.json"), json);
    for (const char* shard : {"2/2", "-1/2", "0/0", "1", "0/2x", "/2"})
        expectRefusal(run({"--shard", shard}), "is not INDEX/COUNT", 2);
}

TEST_F(Batch, KeepsWhatItMadeWhenNothingMoreCanBeWritten) {
    simulate("a.mp4", 1);
    write("a,a.mp4,,\n");
    const ToolRun full = run({}, {.fileSizeLimit = 30000});
    EXPECT_EQ(full.exitCode, 1);
    EXPECT_EQ(clip("a").at("state"), "failed");
    EXPECT_FALSE(exists(mOut / "a"));
    expectNothingHalfMade();
    EXPECT_EQ(run().exitCode, 0);
    EXPECT_EQ(clip("a").at("state"), "done");

    std::filesystem::create_directory(mOut / "b");
    simulate("b.mp4", 2);
    write("a,a.mp4,,\nb,b.mp4,,\n");
    EXPECT_EQ(run().exitCode, 1);
    EXPECT_THAT(clip("b").at("error"), HasSubstr("--force replaces it"));
    EXPECT_EQ(run({"--force"}).exitCode, 0);
}

}  // namespace
