#include <gmock/gmock.h>

#include <cstring>

#include "Scene.h"
#include "findTransform/ifindTransform.h"
#include "support/FakePlatform.h"

using namespace orbitwalk;

namespace {

TEST(FinderLog, TellsTheLifeOfAFinder) {
    fake_platform::setBuildType("user");
    fake_platform::clearLog();
    ifindTransform* const finder = ifindTransform::Create();
    EXPECT_EQ(finder->Initialize(0, 480), 1);
    EXPECT_EQ(finder->Initialize(640, 360), 0);
    finder->Release();
    EXPECT_EQ(ifindTransform::Destroy(finder), 1);
    EXPECT_EQ(ifindTransform::Destroy(nullptr), 1);
    const auto lines = fake_platform::logLines();
    const char* const expected[] = {
        "c2DCalculateTransform::c2DCalculateTransform Enter",
        "c2DCalculateTransform::Initialize : Enter : WidthxHeight = 0x480 ",
        "c2DCalculateTransform::Initialize Error: WidthxHeight = 0x480",
        "c2DCalculateTransform::Initialize : Enter : WidthxHeight = 640x360 ",
        "c2DCalculateTransform::Initialize -- buildType = user",
        "c2DCalculateTransform::Release Enter",
        "c2DCalculateTransform::Release Exit",
        "c2DCalculateTransform::~c2DCalculateTransform Enter",
        "c2DCalculateTransform::~c2DCalculateTransform Exit",
    };
    ASSERT_EQ(lines.size(), std::size(expected));
    for (std::size_t i = 0; i < lines.size(); ++i)
        EXPECT_EQ(lines[i],
                  (fake_platform::LogLine{i == 2 ? 6 : 4, "ORBITWALK_ENGINE 2D_CALCULATE_TRANSFORM",
                                          expected[i]}));
}

TEST(FinderLog, SaysNothingOfAReplacedFinder) {
    ifindTransform* const finder = ifindTransform::Create();
    EXPECT_EQ(finder->Initialize(640, 360), 0);
    fake_platform::clearLog();
    delete finder;
    EXPECT_TRUE(fake_platform::logLines().empty());
}

/// The lines of the second frame; a timing line is the stretch that it names.
std::vector<std::string> linesOfAMeasuredFrame(const char* buildType) {
    fake_platform::setBuildType(buildType);
    ifindTransform* const finder = ifindTransform::Create();
    EXPECT_EQ(finder->Initialize(1280, 720), 0);
    for (const Trajectory& pose : {Trajectory{}, Trajectory{8, 3, 0.004}}) {
        fake_platform::clearLog();
        float x, y, a;
        finder->getTrajectory(Scene().frame(1280, 720, pose, 4).data(), &x, &y, &a);
    }
    std::vector<std::string> lines;
    for (const auto& line : fake_platform::logLines())
        lines.push_back(line.priority == 2 ? "<" + line.tag + ">" : line.text);
    delete finder;
    fake_platform::setBuildType("user");
    return lines;
}

/// Matches a text in which each # stands for a number or an address.
testing::Matcher<std::string> textLike(const std::string& pattern) {
    std::string expression;
    for (const char c : pattern) {
        if (c == '#')
            expression += "-?(0x[0-9a-f]+|[0-9]+[.][0-9]{6}|[0-9]+)";
        else
            expression += std::string(std::strchr("[]().", c) ? "\\" : "") + c;
    }
    return testing::MatchesRegex(expression);
}

TEST(FinderLog, TellsAMeasuredFrameInOrder) {
    const struct {
        bool engineering;
        const char* text;
    } expected[] = {
        {false, "CalculatePrevToCurTransform Enter : src = # WxH = 1280x720 "},
        {false, "CalculatePrevToCurTransform Frm[1] : CurIndx = 1 PrevIndx = 0 \n"},
        {true,
         "CalculatePrevToCurTransform: resize before, src = #, rszFactor=4 prevBuf = # curBuf = #"},
        {false, "<CalculatePrevToCurTransform:ResizeOPT>"},
        {false, "CalculatePrevToCurTransform: image range :  192x108  192x108"},
        {false, "<CalculatePrevToCurTransform:profile feature_extract_capture>"},
        {false, "CalculatePrevToCurTransform:key points : GFTT_OPENCV Point2f size : #"},
        {true, "CalculatePrevToCurTransform prevFeaturePoints  frame number 1 roi = #  w: 192 "},
        {true,
         "CalculatePrevToCurTransform forward tracking frame number 1 enter prev points currpoints "
         "# 0"},
        {false, "TrackPointsWithOpticalFlow : LK_OPENCV"},
        {false, "<CalculatePrevToCurTransform:profile feature_track_forward>"},
        {true,
         "CalculatePrevToCurTransform forward tracking frame number 1 exit prev points currpoints "
         "# #"},
        {true,
         "CalculatePrevToCurTransform backward tracking frame number 1 enter prev points "
         "currpoints # #"},
        {false, "TrackPointsWithOpticalFlowBackward : LK_OPENCV"},
        {false, "<CalculatePrevToCurTransform:profile feature_track_backward>"},
        {true,
         "CalculatePrevToCurTransform backward tracking frame number 1 exit prev points currpoints "
         "# #"},
        {true, "FilterkeyPoints backward forward consistency done # #"},
        {false, "OTSUTHRESHOLDING : threshold value median = #\n"},
        {false, "OTSUTHRESHOLDING : threshold value otsu  = #\n"},
        {true, "FilterkeyPoints backward forward consistency done # #"},
        {false, "CalculatePrevToCurTransform:key points : keypoints size after filtering : #"},
        {false, "<CalculatePrevToCurTransform:profile feature_tracking_and_transform_estimation>"},
        {false, "CalculatePrevToCurTransform : Frame[1] : Transform[ #, #, # ] "},
        {false, "c2DCalculateTransform::getTransform : Frame[1] : Transform [ #, #, # ] "},
        {false,
         "c2DCalculateTransform::getCumulativeTransform : Frame[1] : Trajectory [ #, #, # ] "},
    };
    for (const bool engineering : {false, true}) {
        std::vector<testing::Matcher<std::string>> matchers;
        for (const auto& line : expected)
            if (engineering || !line.engineering)
                matchers.emplace_back(textLike(line.text));
        EXPECT_THAT(linesOfAMeasuredFrame(engineering ? "eng" : "user"),
                    testing::ElementsAreArray(matchers));
    }
}

}  // namespace
