#include <gtest/gtest.h>

#include <opencv2/imgcodecs.hpp>
#include <string>

#include "support/TestDirectory.h"
#include "support/VideoFile.h"
#include "tool/RunTool.h"

namespace {

using namespace test_support;

/// Levels: rounding in 8-bit video, and two encoders at their defaults.
constexpr int kTolerance = 4;
const cv::Vec3b kRed(40, 40, 200), kGreen(60, 180, 40);

void expectColour(const cv::Mat3b& picture, cv::Point at, const cv::Vec3b& wanted) {
    const cv::Scalar mean = cv::mean(picture(cv::Rect(at - cv::Point(8, 8), cv::Size(16, 16))));
    for (int c = 0; c < 3; ++c)
        EXPECT_NEAR(mean[c], wanted[c], kTolerance) << "channel " << c << " at " << at;
}

// BT.709 for BT.601 shifts this green by some 25 levels. Sizes between those that everybody takes
// for the one and for the other.
TEST(Colours, StayFromThePhotographToTheStrip) {
    const TestDirectory directory;
    cv::Mat3b photo(1000, 1600, kRed);
    photo.colRange(800, 1600).setTo(cv::Scalar(kGreen));
    cv::imwrite(directory / "photo.png", photo);
    const std::string clip = directory / "clip.mp4", strip = directory / "strip.png";
    for (const char* size : {"960x540", "720x576"}) {
        SCOPED_TRACE(size);
        ASSERT_EQ(runTool({"simulate", directory / "photo.png", "-o", clip, "--size", size,
                           "--frames", "2", "--speed", "1"})
                      .exitCode,
                  0);
        ASSERT_EQ(runTool({"capture", clip, "-o", directory / size}).exitCode, 0);
        ASSERT_EQ(runTool({"render", directory / size, "--strip", strip}).exitCode, 0);
        const cv::Mat3b picture = cv::imread(strip);
        ASSERT_FALSE(picture.empty());
        expectColour(picture, {6 + 80, 6 + 90}, kRed);
        expectColour(picture, {6 + 240, 6 + 90}, kGreen);
    }
}

// Pure red is (81, 90, 240) by BT.601 and (63, 102, 240) by BT.709.
TEST(Colours, OfAStreamThatSaysAnotherMatrixAreConverted) {
    using orbitwalk::media::ColourMatrix;
    const TestDirectory directory;
    orbitwalk::media::EncoderSettings settings;
    settings.width = 320;
    settings.height = 240;
    settings.quality = 4;
    for (const auto matrix : {ColourMatrix::Bt601, ColourMatrix::Bt709}) {
        settings.matrix = matrix;
        const int y = matrix == ColourMatrix::Bt601 ? 81 : 63, cb = y == 81 ? 90 : 102;
        writeVideo(directory / "red.mp4", settings, 1, [&](int) {
            Frame frame(320 * 240 * 3 / 2, static_cast<std::uint8_t>(y));
            std::fill(frame.begin() + 320 * 240, frame.begin() + 320 * 240 * 5 / 4,
                      static_cast<std::uint8_t>(cb));
            std::fill(frame.begin() + 320 * 240 * 5 / 4, frame.end(), std::uint8_t{240});
            return frame;
        });
        const Frame read = readVideo(directory / "red.mp4").at(0);
        EXPECT_NEAR(read[320 * 120], 81, 2);
        EXPECT_NEAR(read[320 * 240 + 5000], 90, 2);
        EXPECT_NEAR(read[320 * 300 + 5000], 240, 2);
    }
}

}  // namespace
