#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "commands/Commands.h"
#include "inspect/RecordFormats.h"
#include "support/Complaint.h"
#include "support/SampleRecord.h"
#include "support/TestDirectory.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

using testing::HasSubstr;

class Inspect : public testing::Test {
  protected:
    Inspect() {
        mBytes = recordBytes(sampleRecord());
        writeFile();
    }

    void writeFile() const {
        const auto* text = reinterpret_cast<const char*>(mBytes.data());
        test_support::writeFile(mPath, {text, mBytes.size()});
    }

    /// What the command prints; throws what it throws.
    std::string run(std::vector<std::string> options) const {
        CLI::App app;
        addInspectCommand(app);
        options.insert(options.begin(), {"inspect", mPath});
        std::ranges::reverse(options);
        testing::internal::CaptureStdout();
        try {
            app.parse(options);
        } catch (...) {
            testing::internal::GetCapturedStdout();
            throw;
        }
        return testing::internal::GetCapturedStdout();
    }

    std::string failure(const std::vector<std::string>& options = {}) const {
        return test_support::complaintOf<ToolError>([&] { run(options); });
    }

    std::vector<std::byte> mBytes;
    const test_support::TestDirectory mDirectory;
    std::string mPath = mDirectory / "sweep.obw";
};

TEST_F(Inspect, NamesTheCodesAndCountsTheRenderedFrames) {
    const std::string text = run({});
    EXPECT_THAT(text, HasSubstr("12, range 2 to 9, 7 rendered\n"));
    EXPECT_THAT(text, HasSubstr("270 (reverse landscape)\n"));
    EXPECT_THAT(text,
                HasSubstr("2 (right to left; a record alone cannot tell a vertical sweep)\n"));
    EXPECT_THAT(text, HasSubstr("1200x675 at 40,22 (93.8 % of the width, 93.8 % of the height)\n"));
    EXPECT_THAT(text,
                HasSubstr("frame    5   0     no        0.000     0.000     0.000     0.000\n"));
}

TEST_F(Inspect, TellsAVerticalSweepWhereTheSummaryDoes) {
    EXPECT_THAT(recordAsText({opened(sampleRecord()), true}, false),
                HasSubstr("2 (vertical, which is not supported)\n"));
    EXPECT_THAT(recordAsText({opened(sampleRecord()), false}, false),
                HasSubstr("2 (right to left)\n"));
    EXPECT_TRUE(nlohmann::json::parse(run({"--json"})).at("vertical").is_null());
}

TEST_F(Inspect, OpensTheRecordOfADirectoryAndRefusesAnotherSweeps) {
    const std::string alone = run({"--raw"});
    mPath = mDirectory / "";
    EXPECT_EQ(run({"--raw"}), alone);
    EXPECT_THAT(failure({"--refined"}), HasSubstr("refined.json: there is no refinement"));
    test_support::writeFile(mDirectory / "sweep.csv", "frame,x,y,a,flag,repeated\n0,0,0,0,1,0\n");
    EXPECT_THAT(failure(), HasSubstr("it has 1 frames, the record says 12"));
}

// Frame 4 was written with the correction (3.5 * 4 - 20, 8 - 4, 0.008 rad = 0.4584 degrees).
TEST_F(Inspect, ShowsAMatrixAsTheCorrectionThatItStandsFor) {
    EXPECT_THAT(run({}),
                HasSubstr("frame    4   1    yes       51.000    -6.000     4.000     0.458\n"));
    EXPECT_THAT(run({"--raw"}), HasSubstr("  0.458  [999968 -7999 0 7999 999968 0 "));
}

TEST_F(Inspect, MarksDisplacementsThatSaturated) {
    auto record = sampleRecord();
    record.scaledInputTransform[3] = INT32_MAX;
    record.scaledInputTransform[4] = INT32_MIN;
    mBytes = recordBytes(record);
    writeFile();
    const std::string text = run({});
    EXPECT_THAT(text, testing::ContainsRegex("frame    3 .*2147.484 [^\n]*\\(saturated\\)\n"
                                             "frame    4 .*-2147.484 [^\n]*\\(saturated\\)\n"
                                             "frame    5 [^(]*\n"));
}

TEST_F(Inspect, GivesJsonForMachines) {
    const auto json = nlohmann::json::parse(run({"--json"}));
    EXPECT_EQ(json["width"], 1280);
    EXPECT_EQ(json["crop"]["height"], 675);
    ASSERT_EQ(json["frames"].size(), 12);
    const auto& frame = json["frames"][4];
    EXPECT_TRUE(frame["rendered"]);
    EXPECT_NEAR(frame["dx"], -6, 1e-4);
    EXPECT_NEAR(frame["dy"], 4, 1e-4);
    EXPECT_NEAR(frame["angle"], 0.008, 2e-6);
    EXPECT_EQ(frame["matrix"][8], 1000000);
    EXPECT_EQ(json["leftBorder"].size(), 6);
    EXPECT_EQ(json["rightBorder"][5]["dx"], -35);
}

TEST_F(Inspect, GivesCsvWithOneWidthOfLine) {
    std::istringstream csv(run({"--csv"}));
    std::vector<std::string> lines;
    for (std::string line; std::getline(csv, line);) {
        EXPECT_EQ(std::ranges::count(line, ','), 16) << line;
        lines.push_back(line);
    }
    ASSERT_EQ(lines.size(), 1 + 6 + 12 + 6);
    EXPECT_EQ(lines[1],
              "left,0,,,,38.000000,2.000000,0.000000000,"
              "1000000,0,0,0,1000000,0,-38000000,-2000000,1000000");
    EXPECT_THAT(lines[7 + 9], testing::StartsWith("frame,9,1,1,178.500000,"));
}

TEST_F(Inspect, RefusesWhatIsNoRecordInOneLineWithTheReason) {
    mBytes.pop_back();
    writeFile();
    EXPECT_EQ(failure(), mPath + ": not a motion record: has 52807 bytes, a record has 52808");
    mBytes.assign(OBW_METADATA_SIZE, std::byte{});
    writeFile();
    EXPECT_EQ(failure({"--refined"}), "--refined is of a capture: give its directory");
    EXPECT_EQ(failure({"--json"}),
              mPath + ": not a motion record: has an implausible frame size, 0x0");
    std::filesystem::remove(mPath);
    EXPECT_EQ(failure(), mPath + ": No such file or directory");
    std::filesystem::create_directory(mPath);
    EXPECT_EQ(failure(), mPath + "/sweep.obw: No such file or directory");
}

TEST_F(Inspect, TakesOneFormatAtATime) {
    EXPECT_THROW(run({"--json", "--csv"}), CLI::ExcludesError);
    EXPECT_THROW(run({"--raw", "--csv"}), CLI::ExcludesError);
}

}  // namespace
}  // namespace orbitwalk::tool
