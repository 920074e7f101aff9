#include <gtest/gtest.h>

#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "evaluate/PictureQuality.h"
#include "evaluate/Registration.h"
#include "evaluate/ResidualMotion.h"
#include "tool/EvaluateScene.h"

using namespace orbitwalk::tool;
using test_support::pictureSize;
using test_support::takePicture;

namespace {

/// Of the scene's path in the picture.
double secondDifferenceRms(const std::vector<double>& path) {
    double sum = 0;
    for (std::size_t k = 1; k + 1 < path.size(); ++k)
        sum += std::pow(path[k + 1] - 2 * path[k] + path[k - 1], 2);
    return std::sqrt(sum / static_cast<double>(path.size() - 2));
}

/// A pan of 6 pixels a frame with jitter on top.
struct JitteryPan {
    double jitter = 0;         // Pixels.
    double jitterDegrees = 0;  // Of turn about the middle.
    bool object = false;       // Something large and near stays where it is in the picture.
};

ResidualMotion measure(const JitteryPan& pan, std::vector<double>& x, std::vector<double>& angle) {
    std::vector<std::optional<FrameMotion>> motions;
    std::optional<MeasuredFrame> last;
    for (int k = 0; k < 8; ++k) {
        const double sign = k % 3 == 0 ? 1 : -0.5;
        x.push_back(-6.0 * k + pan.jitter * sign);
        angle.push_back(pan.jitterDegrees * sign);
        // The scene goes against the camera; no turn, or the axes would mix.
        cv::Mat1b picture = takePicture({-x.back(), 0, angle.back()});
        if (pan.object) {
            cv::Mat1b object = picture({240, 160, 160, 160});
            cv::randu(object, 0, 255);
            cv::GaussianBlur(object, object, {}, 2);
        }
        const MeasuredFrame frame(picture);
        if (last)
            motions.push_back(last->motionTo(frame));
        last = frame;
    }
    return residualMotion(motions).value();
}

std::int64_t blackPixels(const cv::Mat1b& picture) {
    return pixelsOf(blackBorder(picture));
}

cv::Mat1b grating(double period) {
    cv::Mat1b picture(pictureSize());
    for (int x = 0; x < picture.cols; ++x)
        picture.col(x) = cv::saturate_cast<uchar>(128 + 100 * std::sin(2 * CV_PI * x / period));
    return picture;
}

}  // namespace

TEST(ResidualMotion, IsTheSecondDifferenceOfAKnownJitter) {
    constexpr double pixels = 0.06, degrees = 0.006;
    for (const JitteryPan& pan : {JitteryPan{}, JitteryPan{1.5}, JitteryPan{8}, JitteryPan{0, 0.4},
                                  JitteryPan{1.5, 0, true}}) {
        std::vector<double> x, angle;
        const ResidualMotion residual = measure(pan, x, angle);
        EXPECT_NEAR(residual.x, secondDifferenceRms(x), pixels) << pan.jitter;
        EXPECT_NEAR(residual.y, 0, pixels) << pan.jitter;
        EXPECT_NEAR(residual.angle, secondDifferenceRms(angle), degrees) << pan.jitterDegrees;
        EXPECT_EQ(residual.unmeasured, 0);
    }
}

TEST(ResidualMotion, LeavesOutWhatCannotBeMeasured) {
    const auto even = std::make_optional<FrameMotion>({4, 0, 0});
    const auto faster = std::make_optional<FrameMotion>({7, 0, 0});
    const std::optional<FrameMotion> lost;
    const auto residual = residualMotion(std::vector{even, lost, faster, faster, even});
    ASSERT_TRUE(residual);
    EXPECT_EQ(residual->unmeasured, 1);
    EXPECT_NEAR(residual->x, 3 / std::sqrt(2), 1e-9);
    EXPECT_FALSE(residualMotion(std::vector{even}));
    EXPECT_FALSE(residualMotion(std::vector{even, lost, even}));
}

TEST(Registration, FindsHowMuchOfTheSourceAPictureKeeps) {
    struct Case {
        test_support::View picture;  // The source is the default one.
        double kept, beyond;
    };
    // Moved 64 of 640 pixels: a tenth is gone and a tenth is new, of which two pixels' worth is
    // tolerance. Zoomed by z: 1 / z^2 is left.
    const Case cases[] = {{{}, 1, 0},
                          {{0, 0, 0, 1.25}, 0.64, 0},
                          {{0, 0, 0, 1.6}, 0.390625, 0},
                          {{64, 0}, 0.9, 62.0 / 640},
                          {{20, -15, 2, 1.4}, 1 / 1.96, 0}};
    const cv::Mat1b source = takePicture({});
    for (const Case& c : cases) {
        Registration registration;
        const auto map = registration.find({takePicture(c.picture), source});
        ASSERT_TRUE(map) << c.kept;
        const View view = viewOf(*map, pictureSize(), pictureSize());
        EXPECT_NEAR(view.kept, c.kept, 0.002);
        EXPECT_NEAR(view.beyond, c.beyond, 0.001);
    }
}

TEST(Registration, SaysWhenThePictureIsNotOfTheSource) {
    Registration registration;
    EXPECT_FALSE(registration.find({cv::Mat1b(pictureSize(), 16), takePicture({})}));
    EXPECT_TRUE(registration.find({takePicture({5, 5}), takePicture({})}));
}

TEST(RelativeSharpness, FallsAsAGratingBlurs) {
    const cv::Mat1b source = grating(16);
    for (const double sigma : {1.0, 2.0, 3.0}) {
        cv::Mat1b blurred;
        cv::GaussianBlur(source, blurred, {}, sigma);
        // The Gaussian's transfer at the grating's frequency.
        const double expected = std::exp(-2 * std::pow(CV_PI * sigma / 16, 2));
        EXPECT_NEAR(relativeSharpness(blurred, source, {}, {}).value(), expected, 0.01) << sigma;
    }
    EXPECT_FALSE(relativeSharpness(source, cv::Mat1b(pictureSize(), 50), {}, {}))
        << "nothing to blur";
}

TEST(RelativeSharpness, LooksAwayFromTheMissingBorder) {
    const cv::Mat1b source = grating(16);
    cv::Mat1b picture = source.clone();
    picture.colRange(0, 100) = 16;
    EXPECT_NEAR(relativeSharpness(picture, source, {}, blackBorder(picture)).value(), 1, 1e-6);
}

TEST(BlackBorder, CountsAWedgeAtTheEdgeAndNoDarkThingInside) {
    cv::Mat1b picture = takePicture({});
    EXPECT_EQ(blackPixels(picture), 0);
    picture({300, 200, 50, 50}) = 16;
    EXPECT_EQ(blackPixels(picture), 0);
    picture({0, 100, 3, 3}) = 16;  // Too small to be a stabiliser's.
    EXPECT_EQ(blackPixels(picture), 0);
    for (int y = 0; y < 40; ++y)  // Legs of 40 pixels: 40 + 39 + ... + 1.
        picture.row(y).colRange(pictureSize().width - 40 + y, pictureSize().width) = 17;
    EXPECT_EQ(blackPixels(picture), 820);
}

TEST(MissingBorder, IsBlackThatTheSourceDoesNotExplain) {
    // The source has a shadow of 60 columns at the right; the picture is moved by 20 to the right,
    // which takes 20 columns of the shadow out and leaves 20 black columns at the left.
    cv::Mat1b source = takePicture({});
    cv::max(source, 60, source);
    source.colRange(580, 640) = 16;
    cv::Mat1b picture(pictureSize(), 16);
    source.colRange(0, 620).copyTo(picture.colRange(20, 640));
    EXPECT_EQ(blackPixels(picture), (20 + 40) * 480);
    EXPECT_EQ(pixelsOf(missingBorder(picture, source, {1, 0, -20, 0, 1, 0})), 20 * 480);
    EXPECT_EQ(pixelsOf(missingBorder(source, source, {})), 0);
}
