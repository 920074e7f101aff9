#include "orbitwalk/refine/RecordWriter.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "Sweeps.h"

namespace orbitwalk::refine {
namespace {

constexpr FrameSize kSize{1280, 720};

RecordFacts factsFor(FrameSize size, std::size_t frames) {
    return {
        .size = size, .endIndex = int(frames), .renderFlags = std::vector<std::int32_t>(frames, 1)};
}

/// A plan of moves without turns, made by hand; the crop leaves 100 and 60 pixels on each side.
PathPlan planOf(const std::vector<PicturePoint>& corrections, PicturePoint motion) {
    PathPlan plan;
    plan.size = kSize;
    plan.crop = {100, 60, 1080, 600};
    for (int t = 0; t < std::ssize(corrections); ++t) {
        plan.shown.push_back(t);
        plan.corrections.push_back({corrections[t].x, corrections[t].y, 0, 0, frameCentre(kSize)});
        plan.motions.push_back({motion.x, motion.y, 0, 0, frameCentre(kSize)});
    }
    return plan;
}

RecordReader opened(const RecordFacts& facts, const PathPlan& plan, int border = 10) {
    const auto written = writeRecord(facts, plan, border);
    if (const auto* refusal = std::get_if<WriteRefusal>(&written))
        throw std::runtime_error(refusal->text);
    const auto read = RecordReader::open(std::get<0>(written));
    if (const auto* refusal = std::get_if<RecordRefusal>(&read))
        throw std::runtime_error(refusal->text);
    return std::get<RecordReader>(read);
}

WriteFault faultOf(const RecordFacts& facts, const PathPlan& plan) {
    return std::get<WriteRefusal>(writeRecord(facts, plan)).fault;
}

TEST(RecordWriter, WritesFieldsWhereTheRecordHasThem) {
    RecordFacts facts = factsFor(kSize, 3);
    facts.startIndex = 1;
    facts.endIndex = 2;
    facts.orientation = 270;
    facts.captureDirection = 2;
    facts.frontCameraFlipped = 1;
    PathPlan plan = planOf({{10, -4}, {0.9999996, 0}}, {-2.5, 7});
    plan.shown = {1, 2};
    const auto bytes = std::get<0>(writeRecord(facts, plan, 0));
    ASSERT_EQ(bytes.size(), 52808u);
    const std::pair<int, std::int32_t> words[] = {
        {0, 1280},      {4, 720},       {8, 3},
        {12, 1},        {16, 2},        {20, 0},
        {24, 0},        {28, 270},      {32, 2},
        {36, 1},        {40, 1},        {44, 1000},
        {48, 100},      {52, 60},       {56, 1080},
        {60, 600},      {64, 3},        {68, 3},
        {72, 1000000},  {96, 0},  // frame 0 is not shown
        {108, 1000000}, {124, 1000000}, {132, -10000000},
        {136, 4000000}, {140, 1000000}, {168, -999999},  // truncated, not rounded
        {44072, 0},     {44076, 0},     {44080, -2500000},
        {48072, 1},     {48080, 1},     {48084, 0},
        {52072, 10},    {52076, 0},     {52440, 0},
        {52804, 0}};
    for (const auto& [offset, word] : words) {
        std::uint32_t read = 0;
        for (int k = 3; k >= 0; --k)
            read = read << 8 | std::to_integer<std::uint32_t>(bytes[offset + k]);
        EXPECT_EQ(std::int32_t(read), word) << offset;
    }
    const auto record = std::get<RecordReader>(RecordReader::open(bytes));
    EXPECT_EQ(factsOf(record).renderFlags, facts.renderFlags);
    EXPECT_EQ(shownFrames(factsOf(record)), plan.shown);
    EXPECT_EQ(opened(factsOf(record), plan, 0).raw().renderMat[1][6], -10000000);
}

TEST(RecordWriter, TurnsAboutTheCentreInMatricesThatTurnAboutTheCorner) {
    PathPlan plan = planOf({{}, {}, {}}, {});
    plan.crop = {540, 260, 200, 200};
    plan.corrections[1].angle = std::atan2(3, 4);
    const PicturePoint centre = frameCentre(kSize);
    const RenderMatrix matrix = opened(factsFor(kSize, 3), plan).renderMatrix(1);
    EXPECT_NEAR(matrix.angle(), std::atan2(3, 4), 2e-6);
    // The frame turned clockwise: what is shown right of the centre lay up and right of it.
    const PicturePoint shown = matrix.frameFromOutput(centre + PicturePoint{50, 0});
    EXPECT_NEAR(shown.x, centre.x + 40, 2e-3);
    EXPECT_NEAR(shown.y, centre.y - 30, 2e-3);
}

/// Every pixel that a player shows, of every frame and border frame, is one that was recorded.
TEST(RecordWriter, CoversTheCropWhateverTheSweep) {
    std::mt19937 random(11);
    const auto among = [&](double least, double most) {
        return std::uniform_real_distribution<double>(least, most)(random);
    };
    for (unsigned trial = 0; trial < 150; ++trial) {
        const FrameSize size{int(among(8, trial % 10 == 0 ? 8000 : 2000)), int(among(8, 1500))};
        const double keep = trial % 7 == 0 ? 1 : among(0.3, 1);
        const PlanOptions options{.smoothScale = trial % 3 == 0};
        const auto motions =
            shakySweep(int(among(1, 40)), size, trial, among(0, size.height / 40.0));
        const auto planned = planPath(motions, size, keep, options);
        if (!std::holds_alternative<PathPlan>(planned))
            continue;  // wilder than any frame of that size
        const auto& plan = std::get<PathPlan>(planned);
        const RecordReader record = opened(factsFor(size, motions.size()), plan);
        std::vector<RenderMatrix> matrices;
        for (int i = 0; i < record.frameCount(); ++i)
            matrices.push_back(record.renderMatrix(i));
        for (int k = 0; k < record.leftBorderCount(); ++k)
            matrices.push_back(record.leftBorder(k));
        for (int k = 0; k < record.rightBorderCount(); ++k)
            matrices.push_back(record.rightBorder(k));
        const CropRectangle crop = record.crop();
        // A player enlarges the crop to the frame's size, edges on edges: its outermost samples.
        const double outX = (1 - double(crop.width) / size.width) / 2;
        const double outY = (1 - double(crop.height) / size.height) / 2;
        for (const RenderMatrix& matrix : matrices)
            for (const double x : {crop.x - outX, crop.x + crop.width - 1 + outX})
                for (const double y : {crop.y - outY, crop.y + crop.height - 1 + outY}) {
                    const PicturePoint p = matrix.frameFromOutput({x, y});
                    EXPECT_GE(std::min(p.x, p.y), -1e-9) << trial;
                    EXPECT_LE(p.x, size.width - 1 + 1e-9) << trial;
                    EXPECT_LE(p.y, size.height - 1 + 1e-9) << trial;
                }
    }
}

TEST(RecordWriter, BorderFramesGoOnEvenlyAndComeToRest) {
    // The crop stands still in the frame while the picture pans by 6: seen motion 6 to the left.
    const RecordReader record = opened(factsFor(kSize, 3), planOf({{}, {}, {}}, {-6, 0}));
    ASSERT_EQ(record.leftBorderCount(), 10);
    ASSERT_EQ(record.rightBorderCount(), 10);
    double last = record.renderMatrix(0).elements()[6];
    for (int k = 9; k >= 0; --k) {  // from the sweep outwards, with 10/11, 9/11, ... of the speed
        const double now = record.leftBorder(k).elements()[6];
        EXPECT_NEAR(now - last, -6 * (k + 1) / 11.0, 3e-6) << k;
        last = now;
    }
    last = record.renderMatrix(2).elements()[6];
    for (int k = 0; k < 10; ++k) {
        const double now = record.rightBorder(k).elements()[6];
        EXPECT_NEAR(now - last, 6 * (10 - k) / 11.0, 3e-6) << k;
        last = now;
    }
}

TEST(RecordWriter, BorderFramesStopSoonerWhereThereIsLessRoom) {
    // 100 pixels of room on the left, 20 on the right; a drift of y towards an edge that is
    // reached.
    const auto plan = planOf({{-80, 59.9}, {-80, 59.9}, {-80, 59.9}}, {-8, 0.25});
    const RecordReader record = opened(factsFor(kSize, 3), plan);
    EXPECT_EQ(record.leftBorderCount(), 10);
    EXPECT_EQ(record.rightBorderCount(), 10);
    double fastest = 0;
    for (int k = 1; k < 10; ++k)
        fastest = std::max(
            fastest, record.rightBorder(k).elements()[6] - record.rightBorder(k - 1).elements()[6]);
    EXPECT_NEAR(record.rightBorder(9).elements()[6], 80 + 16, 1e-3);  // over 4 frames
    EXPECT_NEAR(fastest, 8 * 3 / 5.0, 1e-3);
    // A whole stop within two frames is worse than none.
    EXPECT_EQ(opened(factsFor(kSize, 3), planOf({{-80, 0}, {-80, 0}, {-80, 0}}, {-20, 0}))
                  .rightBorderCount(),
              0);
}

TEST(RecordWriter, SaturatesTheDisplacement) {
    PathPlan plan = planOf(std::vector<PicturePoint>(8), {900, -1000});
    RecordFacts facts = factsFor(kSize, 8);
    EXPECT_EQ(opened(facts, plan).raw().scaledInputTransform[2], 1800000000);
    EXPECT_EQ(opened(facts, plan).raw().scaledInputTransform[3], 2147483647);
    facts.captureDirection = 3;
    EXPECT_EQ(opened(facts, plan).raw().scaledInputTransform[2], -2000000000);
    EXPECT_EQ(opened(facts, plan).raw().scaledInputTransform[3], -2147483647 - 1);
}

TEST(RecordWriter, RefusesWhatNoRecordHolds) {
    const RecordFacts facts = factsFor(kSize, 3);
    const PathPlan plan = planOf({{}, {}, {}}, {});
    EXPECT_EQ(faultOf(factsFor(kSize, 1001), planOf(std::vector<PicturePoint>(1001), {})),
              WriteFault::Facts);
    EXPECT_EQ(faultOf(factsFor({1280, 722}, 3), plan), WriteFault::Plan);
    EXPECT_EQ(faultOf(factsFor(kSize, 4), plan), WriteFault::Plan);
    EXPECT_EQ(faultOf(facts, planOf({{}, {101, 0}, {}}, {})), WriteFault::Beyond);
    EXPECT_EQ(faultOf(facts, planOf({{}, {0, -61}, {}}, {})), WriteFault::Beyond);
    EXPECT_EQ(faultOf(facts, planOf({{}, {3000, 0}, {}}, {})), WriteFault::FixedPoint);
    EXPECT_EQ(faultOf(facts, planOf({{}, {std::nan(""), 0}, {}}, {})), WriteFault::FixedPoint);
    PathPlan shorter = plan;
    shorter.corrections.pop_back();
    EXPECT_EQ(faultOf(facts, shorter), WriteFault::Plan);
    RecordFacts direction = facts;
    direction.captureDirection = 5;
    EXPECT_EQ(faultOf(direction, plan), WriteFault::Facts);
    PathPlan large = plan;
    large.crop.width = 2000;
    EXPECT_EQ(faultOf(facts, large), WriteFault::Beyond);
}

}  // namespace
}  // namespace orbitwalk::refine
