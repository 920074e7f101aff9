#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "report/ReportData.h"
#include "support/SampleRecord.h"
#include "support/TestDirectory.h"
#include "tool/AnalyticSweep.h"

namespace orbitwalk::tool {
namespace {

using test_support::AnalyticSweep;
using testing::DoubleEq;
using testing::ElementsAre;
using testing::IsNan;

ReportData dataOf(const __kelOBWKDXMetaData& record, std::vector<SweepRow> path) {
    return reportData({SweepFiles(""), opened(record), std::move(path), {}, {}});
}

std::vector<SweepRow> measuredPath() {
    auto rows = AnalyticSweep::measuredPath();
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i].position.a = 0.25 * static_cast<double>(i);
    rows[7].repeated = true;
    return rows;
}

class ReportOfASweep : public testing::Test {
  protected:
    const ReportData data = dataOf(AnalyticSweep().record(), measuredPath());
};

// The camera goes (8, 1) a frame and shakes: (0, 0), (3, -2), (-4, 5), (6, 1) at first.
TEST_F(ReportOfASweep, TakesMotionBetweenAllNeighbours) {
    EXPECT_THAT(data.motion.x[0], IsNan());
    EXPECT_EQ(data.motion.x[1], -11);
    EXPECT_EQ(data.motion.y[1], 1);
    EXPECT_EQ(data.motion.x[2], -1);
    EXPECT_EQ(data.motion.y[2], -8);
    EXPECT_EQ(data.motion.x[4], 18);
    EXPECT_NEAR(data.motion.angle[9], 14.3239, 1e-4);
}

TEST_F(ReportOfASweep, MeasuresThePathFromTheFirstSelectedFrame) {
    EXPECT_EQ(data.measured.x[0], 0);
    EXPECT_EQ(data.measured.x[3], -30);
    EXPECT_EQ(data.measured.y[3], -4);
    EXPECT_NEAR(data.measured.angle[3], 42.9718, 1e-4);
    for (const Track* track : {&data.measured, &data.gaussian, &data.smoothed})
        for (int i = 1; i < 10; ++i)
            EXPECT_EQ(std::isnan(track->y[i]), i == 4) << i;
    EXPECT_THAT(data.gaussian.x[0], IsNan());
    EXPECT_THAT(data.smoothed.x[0], IsNan());
    EXPECT_THAT(data.correction.x[4], IsNan());
    EXPECT_THAT(data.room.top[4], IsNan());
}

// The middle of the nine rendered frames is frame 5, moved by (2, 4).
TEST_F(ReportOfASweep, DrawsTheCropOnTheMiddleFrame) {
    EXPECT_EQ(data.cropView.frame, 5);
    const auto at = [](double x, double y) {
        return testing::AllOf(testing::Field(&PicturePoint::x, DoubleEq(x)),
                              testing::Field(&PicturePoint::y, DoubleEq(y)));
    };
    EXPECT_THAT(data.cropView.shown,
                ElementsAre(at(30, 20), at(286, 20), at(286, 212), at(30, 212)));
}

// The frame is turned by the angle of the 3-4-5 triangle and moved by (10, -4); the crop is the
// pixel (100, 50), whose corners show the frame's points (103.7, -10.9), (104.5, -11.5), (105.1,
// -10.7) and (104.3, -10.1).
TEST(ReportData, MeasuresRoomAndCorrectionOfATurnedFrame) {
    auto raw = sampleRecord();
    raw.numFrames = 1;
    raw.startIndex = raw.endIndex = 0;
    constexpr std::int32_t crop[] = {100, 50, 1, 1};
    std::ranges::copy(crop, raw.cropParam);
    constexpr std::int32_t matrix[] = {800000, -600000,  0,       600000, 800000,
                                       0,      -5600000, 9200000, 1000000};
    std::ranges::copy(matrix, raw.renderMat[0]);
    const ReportData data = dataOf(raw, {{{}, 1, false}});
    EXPECT_NEAR(data.correction.angle[0], 36.8699, 1e-4);
    EXPECT_NEAR(data.correction.x[0], 305.9 - 639.5, 1e-9);
    EXPECT_NEAR(data.correction.y[0], 667.3 - 359.5, 1e-9);
    EXPECT_NEAR(data.room.left[0], 104.2, 1e-9);
    EXPECT_NEAR(data.room.right[0], 1280 - 105.6, 1e-9);
    EXPECT_NEAR(data.room.top[0], -11, 1e-9);
    EXPECT_NEAR(data.room.bottom[0], 720 + 9.6, 1e-9);
}

TEST(ReportData, CallsAVerticalSweepWhatTheRecordHasNoWordFor) {
    const auto record = AnalyticSweep().record();
    const std::vector<SweepRow> path = measuredPath();
    Summary summary;
    fillFigures(summary, record, path);
    EXPECT_EQ(summary.direction, OBW_DIRECTION_RIGHT2LEFT);
    EXPECT_EQ(summary.rendered, 9);
    EXPECT_EQ(summary.repeatedMotions, 1);
    summary.direction = OBW_DIRECTION_TOP2BOTTOM;
    const ReportData data = reportData({SweepFiles(""), opened(record), path, summary, {}});
    EXPECT_EQ(data.direction, "vertical, which is not supported");
}

TEST(ReportData, TellsWhichFeedbackStepPassed) {
    const auto stepOf = [](double shake) {
        std::vector<SweepRow> rows(10);
        for (int i = 0; i < 10; ++i)
            rows[i] = {{i % 2 ? shake : -shake, 0, 0}, 1, i > 1};
        return dataOf(AnalyticSweep().record(), rows);
    };
    const ReportData still = stepOf(0);
    EXPECT_EQ(still.feedbackStep, 0);
    EXPECT_EQ(still.smoothed.x[9], 0);
    EXPECT_THAT(still.repeatedWarning, testing::Optional(testing::HasSubstr("8 of 10 frames")));
    EXPECT_THAT(verdictOn(still.steadiness).text, testing::HasSubstr("Not steadier"));
    EXPECT_FALSE(stepOf(300).feedbackStep);
}

// Between the nine frames the corrected picture moves by (-8, -1), but by twice as much where frame
// 4 is left out: of the seven changes of motion two are (8, 1) off, and none as recorded is alike.
TEST(Steadiness, IsTheChangeOfMotionThatIsLeft) {
    const auto [before, after, viewKept, unmeasured, frames] =
        dataOf(AnalyticSweep().record(), AnalyticSweep::measuredPath()).steadiness;
    EXPECT_NEAR(after.x, std::sqrt(2 * 64 / 7.0), 1e-5);
    EXPECT_NEAR(after.y, std::sqrt(2 * 1 / 7.0), 1e-5);
    EXPECT_NEAR(after.angle, 0, 1e-9);
    // Shakes in x without frame 4: 0, 3, -4, 6, 2, -5, 1, -3, 0; steps of the pan 8, 8, 8, 16, 8,
    // 8, 8, 8.
    EXPECT_NEAR(before.x, std::sqrt((100 + 289 + 36 + 121 + 169 + 100 + 49) / 7.0), 1e-9);
    EXPECT_DOUBLE_EQ(viewKept, 0.64);
    EXPECT_EQ(unmeasured, 0);
}

TEST(Steadiness, IsJudgedAtTheCentreOfThePicture) {
    std::vector<SweepRow> rows(AnalyticSweep::frames, SweepRow{{}, 1, false});
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const auto turn =
            SimilarityTransform{.angle = i % 2 ? 0.01 : -0.01, .about = frameCentre({320, 240})}
                .takenAbout({64, 48});
        rows[i].position = rows[i - 1].position + Trajectory{turn.x, turn.y, turn.angle};
    }
    const auto record = opened(AnalyticSweep().record());
    const auto residual = residualOf(recordedMotions(rows, record));
    EXPECT_NEAR(residual.shift(), 0, 1e-9);
    EXPECT_GT(residual.angle, 0.01);
}

}  // namespace
}  // namespace orbitwalk::tool
