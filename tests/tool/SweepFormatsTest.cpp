#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "support/Complaint.h"
#include "support/TestDirectory.h"
#include "sweep/Checksum.h"
#include "sweep/SmoothedPath.h"
#include "sweep/Sweep.h"
#include "sweep/Tables.h"
#include "terminal/ToolError.h"
#include "tool/AnalyticSweep.h"
#include "tool/PanVideo.h"
#include "tool/RunTool.h"

namespace orbitwalk::tool {
namespace {

using test_support::TestDirectory;
using test_support::writeFile;
using testing::HasSubstr;

const std::string kSweepHeader = "frame,x,y,a,flag,repeated\n";
const std::string kTruthHeader = "frame,dx,dy,da,x,y,a\n";

std::string complaintOf(const std::function<void()>& action) {
    return test_support::complaintOf<ToolError>(action);
}

TEST(SweepCsv, KeepsEveryBitOfAFloat) {
    const SweepRow path[] = {{{}, 1, false}, {{-0.1f, 16777216.0f, 1e-7f}, 0, true}};
    const std::string text = sweepCsv(path);
    EXPECT_EQ(text, kSweepHeader + "0,0,0,0,1,0\n1,-0.1,16777216,1e-07,0,1\n");
    const auto rows = parseSweepCsv(text);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1].position, path[1].position);
    EXPECT_EQ(rows[1].flag, 0);
    EXPECT_TRUE(rows[1].repeated);
    EXPECT_FALSE(rows[0].repeated);
    EXPECT_EQ(parseSweepCsv(kSweepHeader + "0,1,0,0,1,0\r\n1,2,0,0,1,0").size(), 2u);
}

TEST(SweepCsv, NamesTheLineThatIsNone) {
    for (const char* text : {"", "0,0,0,0,1,0\n", "frame,x\n"})
        EXPECT_EQ(complaintOf([&] { parseSweepCsv(text); }),
                  "its first line is not frame,x,y,a,flag,repeated");
    for (const char* row :
         {"2,0,0,0,1,0\n", "1,nan,0,0,1,0\n", "1,0,inf,0,1,0\n", "1,0,0,0,1\n", "1,0,0,0,1,0,0\n",
          "\n", "1, 0,0,0,1,0\n", "1,1e99,0,0,1,0\n", "1,0,0,0,7,0\n", "1,0,0,0,1,3\n"})
        EXPECT_EQ(complaintOf([&] { parseSweepCsv(kSweepHeader + "0,0,0,0,1,0\n" + row); }),
                  "line 3 is no row of frame 1")
            << row;
}

TEST(TruthCsv, KeepsEveryBitOfADouble) {
    const TrueMotion truth[] = {{}, {{-12.5, 0.1, 1e-7}, {-12.5, 1.0 / 3, 1e-7}}};
    const std::string text = truthCsv(truth);
    EXPECT_EQ(text,
              kTruthHeader + "0,0,0,0,0,0,0\n1,-12.5,0.1,1e-07,-12.5,0.3333333333333333,1e-07\n");
    const auto rows = parseTruthCsv(text);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1], truth[1].sum);
    EXPECT_EQ(parseTruthCsv(kTruthHeader + "0,0,0,0,0,0,0\r\n").size(), 1u);
}

TEST(TruthCsv, RefusesWhatIsNone) {
    for (const char* text : {"", "frame,x,y,a\n"})
        EXPECT_THROW(parseTruthCsv(text), ToolError);
    for (const char* row : {"1,0,0,0,0,0,0\n", "0,0,0,0,0,0\n", "0,0,0,0,0,0,nan\n",
                            "0,0,0,0,0,0,0,0\n", "0,0,0,0,0,0,x\n"})
        EXPECT_THROW(parseTruthCsv(kTruthHeader + row), ToolError) << row;
}

TEST(TruthCsv, MayGoOnWhereTheSweepIsFull) {
    const TestDirectory directory;
    std::string text = kTruthHeader;
    for (int i = 0; i < OBW_MAX_FRAMES + 3; ++i)
        text += std::to_string(i) + ",0,0,0," + std::to_string(i) + ",0,0\n";
    writeFile(directory / "truth.csv", text);
    const auto rows = readTruthCsv(directory / "truth.csv", OBW_MAX_FRAMES);
    ASSERT_EQ(rows.size(), 1000u);
    EXPECT_EQ(rows.back().x, 999);
    EXPECT_THROW(readTruthCsv(directory / "truth.csv", OBW_MAX_FRAMES - 1), ToolError);
}

// The example of FIPS 180-2.
TEST(Checksum, IsSha256) {
    const std::string expected = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
    const TestDirectory directory;
    writeFile(directory / "abc", "abc");
    EXPECT_EQ(sha256(std::string("abc")), expected);
    EXPECT_EQ(sha256OfFile(directory / "abc"), expected);
    EXPECT_EQ(identityOf(directory / "abc")->bytes, 3);
    EXPECT_FALSE(identityOf("/dev/null"));
    EXPECT_THAT(complaintOf([&] { sha256OfFile(directory / "none"); }), HasSubstr("none: No such"));
}

TEST(Verdict, SaysWhatIsLeftAtWhichPriceOrWhyNothingWasGained) {
    const struct {
        double before, after;
        int unmeasured;  ///< Of 50.
        const char* verdict;
        std::vector<std::string> warnings;
    } cases[] = {
        {5, 1, 5, "Steadier: 1.00 of 5.00 px of shake remain (20 %), with 81.0 % of the view", {}},
        {5, 1, 6, "Steadier: ", {"the motion of 6 of 50 frames could not be measured"}},
        {5, 6, 0, "Not steadier than recorded: 5.00 px", {"Not steadier"}},
        {5, 1, 26, "the motion could not be measured", {"26 of 50 frames", "Not steadier"}},
        {0, 0, 0, "Nothing to steady", {}},
    };
    for (const auto& c : cases) {
        const Steadiness steadiness{{0, c.before, 0}, {c.after, 0, 0}, 0.81, c.unmeasured, 50};
        const Verdict verdict = verdictOn(steadiness);
        EXPECT_THAT(verdict.text, HasSubstr(c.verdict));
        EXPECT_EQ(verdict.steadier, verdict.text.starts_with("Steadier"));
        const auto warnings = warningsOn(steadiness);
        ASSERT_EQ(warnings.size(), c.warnings.size()) << c.verdict;
        for (std::size_t i = 0; i < warnings.size(); ++i)
            EXPECT_THAT(warnings[i], HasSubstr(c.warnings[i]));
    }
}

class Sidecar : public testing::Test {
  protected:
    Sidecar() {
        sweep.write(directory / "sweep");
        summary.width = AnalyticSweep::width;
        summary.height = AnalyticSweep::height;
        summary.frames = AnalyticSweep::frames;
        summary.complete = false;
        summary.source = FileIdentity{"/clips/a.mp4", 1LL << 40, "0f"};
        summary.direction = OBW_DIRECTION_RIGHT2LEFT;
        summary.smoothing = Smoothing::FellBack;
        summary.seconds.total = 1.5;
        summary.checksums = checksumsOf(files);
    }

    /// The complaint about a sweep.json in which a value is another; null takes it away.
    std::string complaint(const char* place, const nlohmann::ordered_json& value) const {
        auto json = toJson(summary);
        if (const nlohmann::ordered_json::json_pointer pointer(place); value.is_null())
            json[pointer.parent_pointer()].erase(pointer.back());
        else
            json[pointer] = value;
        writeFile(files.summary, json.dump());
        return complaintOf([&] { readSweep(directory / "sweep"); });
    }

    using AnalyticSweep = test_support::AnalyticSweep;
    const TestDirectory directory;
    const AnalyticSweep sweep{};
    const SweepFiles files{directory / "sweep"};
    Summary summary;
};

TEST_F(Sidecar, ReadsBackWhatWasWritten) {
    EXPECT_FALSE(openSummary(files));
    writeFile(files.summary, toJsonText(summary));
    const auto read = openSummary(files);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->schema, kSummarySchema);
    EXPECT_EQ(read->toolVersion, toolVersion());
    EXPECT_FALSE(read->complete);
    EXPECT_EQ(read->source->path, "/clips/a.mp4");
    EXPECT_EQ(read->source->bytes, 1LL << 40);
    EXPECT_EQ(read->direction, OBW_DIRECTION_RIGHT2LEFT);
    EXPECT_EQ(read->smoothing, Smoothing::FellBack);
    EXPECT_EQ(read->seconds.total, 1.5);
}

TEST_F(Sidecar, TellsTheFileThatIsOfAnotherCapture) {
    writeFile(files.summary, toJsonText(summary));
    for (const auto& file : {files.video, files.record, files.path}) {
        const std::string content = test_support::contentOf(file);
        writeFile(file, content + "\n");
        EXPECT_EQ(complaintOf([&] { openSummary(files); }),
                  file.string() +
                      " is not the one that sweep.json beside it was written with: the "
                      "files are of different captures");
        std::filesystem::remove(file);
        EXPECT_THAT(complaintOf([&] { openSummary(files); }),
                    HasSubstr(file.string() + ": No such"));
        writeFile(file, content);
    }
    EXPECT_THAT(complaint("/frames", 9), HasSubstr("sweep.json is of another sweep: it says 9"));
    EXPECT_THAT(complaint("/width", 322), HasSubstr("sweep.json is of another sweep: it says 10"));
}

TEST_F(Sidecar, RefusesWhatNoCaptureWrites) {
    const struct {
        const char* place;
        nlohmann::ordered_json value;
    } cases[] = {{"/frames", "many"},    {"/frames", -1},        {"/frames", 1e300},
                 {"/frames", 1LL << 33}, {"/frames", 2.5},       {"/seconds/decode", -1},
                 {"/complete", 1},       {"/smoothing", "odd"},  {"/direction", 1},
                 {"/source/bytes", -5},  {"/checksums/path", 3}, {"/schema", 1.5},
                 {"/first", nullptr},    {"/video", nullptr},    {"/seconds/total", nullptr}};
    for (const auto& [place, value] : cases)
        EXPECT_THAT(complaint(place, value), HasSubstr("sweep.json: no summary of a capture"))
            << place;
    EXPECT_THAT(complaint("/schema", 2), HasSubstr("a later version wrote it (schema 2)"));
    for (const char* text : {"", "{", "[]", "{}", "3"})
        EXPECT_THROW(parseSummary(text), ToolError) << text;
    writeFile(files.summary, std::string((1 << 20) + 1, ' '));
    EXPECT_THAT(complaintOf([&] { openSummary(files); }), HasSubstr("sweep.json: it is too large"));
}

TEST_F(Sidecar, MayBeFromBeforeItHadANumber) {
    writeFile(files.summary,
              R"({"video": "clips/a.mp4", "width": 320, "height": 240, "frames": 10,
                  "truncated": true, "seconds": {"decode": 1, "measure": 1, "feed": 1,
                  "waitForEncoder": 1, "finishVideo": 1, "smooth": 1, "renderMatrices": 1,
                  "cleanUp": 1, "total": 8}})");
    const Sweep opened = readSweep(directory / "sweep");
    ASSERT_TRUE(opened.summary);
    EXPECT_EQ(opened.summary->schema, 0);
    EXPECT_TRUE(opened.summary->truncated);
    EXPECT_EQ(opened.path.size(), 10u);
}

SweepRow at(double x, int flag) {
    return {{x, 2 * x, 0}, flag, false};
}

TEST(SmoothedPath, MeasuresFromTheFirstSelectedFrame) {
    const SweepRow rows[] = {at(5, 1),  at(7, 0),  at(9, 1), at(10, 1),
                             at(12, 0), at(14, 1), at(99, 1)};
    const auto path = smoothedPath(rows, 1, 5, 640, 480);
    EXPECT_EQ(path.reference, 2);
    EXPECT_EQ(path.frames, (std::vector{3, 5}));
    ASSERT_EQ(path.measured.size(), 2u);
    EXPECT_EQ(path.measured[0].x, 1);
    EXPECT_EQ(path.measured[1].x, 5);
    EXPECT_EQ(path.measured[1].y, 10);
    EXPECT_EQ(path.gaussian.size(), 2u);
    EXPECT_EQ(path.smoothed.size(), 2u);
}

TEST(SmoothedPath, FallsBackWhereNoRunKeepsEnough) {
    std::vector<SweepRow> wild;
    for (int i = 0; i < 20; ++i)
        wild.push_back(at(i % 2 ? 400 : -400, 1));
    const std::vector<SweepRow> single{at(0, 0), at(3, 1)}, none{at(0, 0)};
    for (const auto& rows : {wild, single, none}) {
        const auto path = smoothedPath(rows, 0, 20, 640, 480);
        EXPECT_FALSE(path.feedbackStep);
        EXPECT_EQ(path.crop.width, 639);
        EXPECT_EQ(path.smoothed[0].x, 0);
    }
    EXPECT_EQ(smoothedPath(single, 0, 20, 640, 480).reference, 1);
    EXPECT_EQ(smoothedPath(none, 0, 20, 640, 480).reference, -1);
}

// Where a corrected frame stands is its measured position moved by the correction in the record.
TEST(SmoothedPath, IsWhereTheEnginesCorrectionsPutTheFrames) {
    const TestDirectory directory;
    test_support::writePanVideo(directory / "pan.mp4", {.frames = 16, .stepX = -9, .stepY = 2});
    const auto run = test_support::runTool(
        {"capture", directory / "pan.mp4", "-o", directory / "sweep", "--first", "1"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const RecordReader record = readRecordFile(directory / "sweep" / "sweep.obw");
    const auto rows = readSweepCsv(directory / "sweep" / "sweep.csv", record.frameCount());
    const auto path = smoothedPath(rows, record.raw().startIndex, record.raw().endIndex,
                                   record.width(), record.height());
    ASSERT_TRUE(path.feedbackStep);
    EXPECT_NO_THROW(requirePathOfRecord(rows, record));
    EXPECT_EQ(path.reference, 1);
    EXPECT_EQ(record.crop(), path.crop);
    Trajectory measured;
    for (std::size_t v = 0; v < path.frames.size(); ++v) {
        const int frame = path.reference + static_cast<int>(v);
        const RenderMatrix matrix = record.renderMatrix(frame);
        const PicturePoint correction = matrix.outputFromFrame({0, 0});
        EXPECT_NEAR(measured.x + correction.x, path.smoothed[v].x, 1e-4) << frame;
        EXPECT_NEAR(measured.y + correction.y, path.smoothed[v].y, 1e-4) << frame;
        EXPECT_NEAR(measured.a + matrix.angle(), path.smoothed[v].a, 2e-6) << frame;
        measured = path.measured[v];
    }
    EXPECT_LT(measured.x, -9 * 10);
}

}  // namespace
}  // namespace orbitwalk::tool
