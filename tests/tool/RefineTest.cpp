#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "orbitwalk/RecordReader.h"
#include "support/TestDirectory.h"
#include "sweep/Sweep.h"
#include "sweep/Tables.h"
#include "terminal/ToolError.h"
#include "tool/PanVideo.h"
#include "tool/RunTool.h"

namespace orbitwalk::tool {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using test_support::contentOf;
using test_support::runTool;
using test_support::ToolRun;
using testing::HasSubstr;

constexpr FrameSize kSize{480, 360};
constexpr int kFrames = 24;

TEST(MotionCsv, KeepsEveryDigitAndRefusesWhatIsNoTable) {
    std::vector<refine::FrameMotion> motions(3);
    for (auto& row : motions)
        row.motion.about = frameCentre(kSize);
    motions[1] = {{0.1, -1e-17, 1.0 / 3, 2e300, frameCentre(kSize)}, {}, true};
    const auto read = parseMotionCsv(motionCsv(motions), kSize);
    ASSERT_EQ(read.size(), 3u);
    EXPECT_EQ(read[1].motion, motions[1].motion);
    EXPECT_TRUE(read[1].measured);
    EXPECT_FALSE(read[2].measured);

    const std::string head = "frame,dx,dy,da,ds,measured\n";
    for (const std::string& text :
         {std::string(), std::string("frame,dx\n"), head + "1,0,0,0,0,1\n", head + "0,0,0,0,0\n",
          head + "0,nan,0,0,0,1\n", head + "0,1e999,0,0,0,1\n", head + "0,0,0,0,0,2\n",
          head + "0,0,0,0,0,1,0\n"})
        EXPECT_THROW(parseMotionCsv(text, kSize), ToolError) << text;
}

/// A captured sweep of a clip whose true motion is known; made once.
class Refined : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        sDirectory = std::make_unique<test_support::TestDirectory>();
        const fs::path clip = *sDirectory / "clip.mp4";
        run({"simulate", "--size", "480x360", "--frames", std::to_string(kFrames), "--speed", "4",
             "-o", clip, "--truth", *sDirectory / "truth.csv"});
        run({"capture", clip, "-o", *sDirectory / "captured"});
    }
    static void TearDownTestSuite() { sDirectory.reset(); }

    static ToolRun run(const std::vector<std::string>& arguments) {
        const ToolRun done = runTool(arguments);
        EXPECT_EQ(done.exitCode, 0) << done.err;
        return done;
    }

    Refined() { fs::copy(*sDirectory / "captured", sweep); }

    json refine(std::vector<std::string> more = {}) const {
        std::vector<std::string> arguments{"refine", sweep, "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return json::parse(run(arguments).out);
    }

    static std::unique_ptr<test_support::TestDirectory> sDirectory;
    const test_support::TestDirectory own;
    const fs::path sweep = own / "sweep";
};

std::unique_ptr<test_support::TestDirectory> Refined::sDirectory;

TEST_F(Refined, MeasuresTheTrueMotionAndLeavesTheEnginesFilesAlone) {
    std::map<std::string, std::string> before;
    for (const std::string& name : test_support::namesIn(sweep))
        before[name] = contentOf(sweep / name);
    const json summary = refine();
    for (const auto& [name, content] : before)
        EXPECT_EQ(contentOf(sweep / name), content) << name;

    const auto motions = readMotionCsv(sweep / "refined.csv", kSize, kFrames);
    const auto truth = readTruthCsv(*sDirectory / "truth.csv", kFrames);
    // The truth is about the corner of the region that the engine measures in.
    const PicturePoint origin{4 * (kSize.width / 4 / 5), 4 * (kSize.height / 4 / 5)};
    SimilarityTransform sum;
    for (int i = 1; i < kFrames; ++i) {
        const Trajectory step = truth[i] - truth[i - 1];
        const SimilarityTransform exact =
            SimilarityTransform{step.x, step.y, step.a, 0, origin}.takenAbout(frameCentre(kSize));
        sum.x += motions[i].motion.x - exact.x;
        sum.y += motions[i].motion.y - exact.y;
        sum.angle += motions[i].motion.angle - exact.angle;
        EXPECT_TRUE(motions[i].measured);
        EXPECT_LT(std::hypot(sum.x, sum.y), 0.1) << "pixels, frame " << i;
        EXPECT_LT(std::abs(sum.angle), 2e-4) << "radians, frame " << i;
    }
    EXPECT_EQ(summary.at("video"), "clip.mp4");
    EXPECT_LT(summary.at("residualAfter").at("xPixels"),
              0.06 * summary.at("residualBefore").at("xPixels").get<double>());
    EXPECT_EQ(fs::file_size(sweep / "refined.obw"), 52808u);
}

TEST_F(Refined, IsTheSameWhenItIsMadeWhileCapturing) {
    refine({"--keep", "0.9"});
    const auto capture = [&](std::vector<std::string> more) {
        more.insert(more.begin(), {"capture", *sDirectory / "clip.mp4", "-o", own / "both"});
        return runTool(more);
    };
    for (const std::vector<std::string>& wrong :
         {std::vector<std::string>{"--keep", "0.9"}, {"--refine", "--keep", "0"}})
        EXPECT_EQ(capture(wrong).exitCode, 2);
    EXPECT_EQ(capture({"--refine", "--skip", "0-23"}).exitCode, 1) << "nothing to plan for";
    EXPECT_FALSE(fs::exists(own / "both"));

    const ToolRun both = capture({"--refine", "--keep", "0.9", "--json"});
    ASSERT_EQ(both.exitCode, 0) << both.err;
    for (const char* name : {"sweep.mp4", "sweep.obw", "sweep.csv", "refined.obw", "refined.csv"})
        EXPECT_EQ(contentOf(own / "both" / name), contentOf(sweep / name)) << name;
    json said = json::parse(both.out).at("refined");
    json alone = json::parse(contentOf(sweep / "refined.json"));
    EXPECT_EQ(said, json::parse(contentOf(own / "both/refined.json")));
    for (json* summary : {&said, &alone})
        summary->erase("seconds");
    EXPECT_EQ(said, alone);
}

TEST_F(Refined, ReplansFromTheMotionsThatItSaved) {
    const json first = refine({"--keep", "0.9"});
    const std::string motions = contentOf(sweep / "refined.csv");
    const json second = refine({"--replan", "--keep", "0.8"});
    EXPECT_EQ(contentOf(sweep / "refined.csv"), motions);
    EXPECT_EQ(second.at("crop").at("width"), 384);
    EXPECT_EQ(second.at("seconds").at("measure"), 0);
    const RecordReader record = readRecordFile(sweep / "refined.obw");
    EXPECT_EQ(record.crop().width, 384);
    EXPECT_EQ(record.frameCount(), kFrames);
}

TEST_F(Refined, IsShownAsTheEnginesRecordIs) {
    refine({"--keep", "0.9"});
    const ToolRun rendered = run({"render", sweep, "--refined", "-o", own / "steady.mp4"});
    EXPECT_EQ(rendered.err.find("outside what was recorded"), std::string::npos) << rendered.err;
    const auto residual = [&](const std::string& video) {
        const json judged = json::parse(run({"evaluate", "--video", video, "--json"}).out);
        const json& motion = judged.at("video").at("residualMotion");
        return std::hypot(motion.at("xPixels").get<double>(), motion.at("yPixels").get<double>());
    };
    EXPECT_LT(residual(own / "steady.mp4"), 0.1 * residual(sweep / "sweep.mp4"));
}

TEST_F(Refined, SaysWhatCouldNotBeMeasured) {
    // Each frame shows another place.
    test_support::writePanVideo(own / "cuts.mp4", {.frames = 3, .stepX = 2000});
    const ToolRun both = run({"capture", own / "cuts.mp4", "-o", own / "cuts", "--refine"});
    EXPECT_THAT(both.err, HasSubstr("warning: refined: Not steadier than recorded"));
}

TEST_F(Refined, RefusesInOneLineAndLeavesNothingHalfWritten) {
    const auto refusal = [&](std::vector<std::string> arguments, int code) {
        arguments.insert(arguments.begin() + 1, sweep);
        const ToolRun done = runTool(arguments);
        EXPECT_EQ(done.exitCode, code) << done.err;
        EXPECT_EQ(std::ranges::count(done.err, '\n'), 1) << done.err;
        return done.err;
    };
    for (const char* keep : {"0", "1.01", "-1", "nan"})
        EXPECT_THAT(refusal({"refine", "--keep", keep}, 2), HasSubstr("--keep"));
    EXPECT_THAT(refusal({"refine", "--steadiness", "1.5"}, 2), HasSubstr("--steadiness"));
    EXPECT_THAT(refusal({"refine", "--replan"}, 1), HasSubstr("refined.json"));
    EXPECT_THAT(refusal({"render", "--refined", "-o", own / "x.mp4"}, 1),
                HasSubstr("run orbitwalk refine"));
    EXPECT_EQ(test_support::namesIn(sweep).size(), 4u);

    refine({"--keep", "0.9"});
    const std::string record = contentOf(sweep / "refined.obw");
    const std::string motions = contentOf(sweep / "refined.csv");
    test_support::writeFile(sweep / "refined.csv", motions + "\n");
    EXPECT_THAT(refusal({"refine", "--replan"}, 1), HasSubstr("refined.csv is not the one"));
    EXPECT_EQ(contentOf(sweep / "refined.obw"), record);

    // A record of frames in which nothing was measured is that of any such sweep: the video tells.
    test_support::writeFile(sweep / "refined.csv", motions);
    fs::remove(sweep / "sweep.json");
    test_support::writeFile(sweep / "sweep.mp4", "another sweep's");
    for (const std::vector<std::string>& reading : {std::vector<std::string>{"refine", "--replan"},
                                                    {"render", "--refined", "-o", own / "x.mp4"},
                                                    {"report", "--refined", "-o", own / "x.html"},
                                                    {"evaluate", "--refined"},
                                                    {"inspect", "--refined"}})
        EXPECT_THAT(refusal(reading, 1), HasSubstr("sweep.mp4 is not the one")) << reading[0];
    for (const char* text :
         {"", "[]", "{\"schema\": 1}", "{\"schema\": 3}", "{\"schema\": 2, \"frames\": 1e300}"}) {
        test_support::writeFile(sweep / "refined.json", text);
        EXPECT_THAT(refusal({"refine", "--replan"}, 1), HasSubstr("no summary of a refinement"));
    }
}

}  // namespace
}  // namespace orbitwalk::tool
