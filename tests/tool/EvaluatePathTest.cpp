#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "evaluate/SweepFacts.h"
#include "support/SampleRecord.h"

using namespace orbitwalk;
using namespace orbitwalk::tool;

namespace {

constexpr double kTiny = 1e-4;  // The measured path is in floats.

std::vector<Trajectory> line(double dx, double dy) {
    std::vector<Trajectory> rows;
    for (int k = 0; k < 5; ++k)
        rows.push_back({dx * k, dy * k, 0});
    return rows;
}

std::vector<SweepRow> rowsAt(const std::vector<Trajectory>& positions) {
    std::vector<SweepRow> rows;
    for (const Trajectory& p : positions)
        rows.push_back({p, 1, false});
    return rows;
}

/// Every frame moved by the whole number of pixels to the right.
void moveRight(__kelOBWKDXMetaData& record, int pixels) {
    for (auto& matrix : record.renderMat) {
        const std::int32_t moved[9] = {1000000, 0, 0, 0, 1000000, 0, -1000000 * pixels, 0, 1000000};
        std::ranges::copy(moved, matrix);
    }
}

}  // namespace

TEST(PathError, IgnoresWhereTheMeasuredPathBegins) {
    auto measured = rowsAt(line(-12, 0));
    for (SweepRow& row : measured)
        row.position.x += 40;
    const PathError error = pathError(measured, line(-12, 0));
    EXPECT_NEAR(error.x.max, 0, kTiny);
    EXPECT_NEAR(error.travelled, 48, kTiny);
}

TEST(PathError, TellsAMotionMeasuredShortFromOneThatStraysAside) {
    struct Case {
        const char* name;
        double dx, dy;  // Of the truth; measured below.
        double measuredX, measuredY;
        double along, across;
    };
    const Case cases[] = {{"5 % short, to the left", -20, 0, -19, 0, -5, 0},
                          {"5 % long, to the right", 20, 0, 21, 0, 5, 0},
                          {"10 % short, down", 0, 10, 0, 9, -10, 0},
                          {"down while going right", 10, 0, 10, 1, 0, 10},
                          {"down while going left", -10, 0, -10, 1, 0, -10}};
    for (const Case& c : cases) {
        const PathError error = pathError(rowsAt(line(c.measuredX, c.measuredY)), line(c.dx, c.dy));
        EXPECT_NEAR(error.driftAlong, c.along, kTiny) << c.name;
        EXPECT_NEAR(error.driftAcross, c.across, kTiny) << c.name;
    }
}

TEST(PathError, GivesRmsAndMaximumOfPositionAndStep) {
    auto measured = rowsAt(line(10, 0));
    measured[2].position.x += 4;  // Position errors 0 0 4 0 0, step errors 0 4 -4 0.
    measured[4].position.a = std::numbers::pi / 180;
    measured[1].repeated = true;
    const PathError error = pathError(measured, line(10, 0));
    EXPECT_NEAR(error.x.rms, 4 / std::sqrt(5), kTiny);
    EXPECT_NEAR(error.x.max, 4, kTiny);
    EXPECT_NEAR(error.stepX.rms, std::sqrt(8), kTiny);
    EXPECT_NEAR(error.angle.max, 1, kTiny);
    EXPECT_NEAR(error.stepAngle.rms, 0.5, kTiny);
    EXPECT_NEAR(error.repeatedShare, 0.2, kTiny);
}

TEST(PathError, OfASingleFrameIsZero) {
    const PathError error = pathError(rowsAt({{3, 4, 5}}), std::vector<Trajectory>{{1, 1, 1}});
    EXPECT_EQ(error.x.rms + error.stepX.rms + error.driftAlong + error.travelled, 0);
}

TEST(SweepFacts, CountsWhatTheCropShowsOutsideTheFrame) {
    __kelOBWKDXMetaData record = sampleRecord();
    const std::int32_t whole[] = {0, 0, 1280, 720};
    std::ranges::copy(whole, record.cropParam);
    moveRight(record, 30);
    SweepFacts facts = sweepFacts(opened(record));
    // Frames 2 to 9 without 5; 29 columns lie more than a pixel outside.
    EXPECT_EQ(facts.renderedFrames, 7);
    EXPECT_EQ(facts.missingPixels, 7 * 29 * 720);
    EXPECT_NEAR(facts.meanCorrectionX, 30, kTiny);
    EXPECT_NEAR(facts.largestCorrection, 30, kTiny);
    EXPECT_NEAR(facts.keptView, 1, kTiny);
    const std::int32_t inside[] = {30, 0, 640, 720};
    std::ranges::copy(inside, record.cropParam);
    facts = sweepFacts(opened(record));
    EXPECT_EQ(facts.missingPixels, 0);
    EXPECT_NEAR(facts.keptView, 0.5, kTiny);
}
