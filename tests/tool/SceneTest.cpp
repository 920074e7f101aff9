#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <regex>
#include <string>

#include "orbitwalk/GeometryOpenCV.h"
#include "simulate/ColourPlanes.h"
#include "simulate/Scene.h"
#include "simulate/ShakyPath.h"
#include "support/Complaint.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

SimulationSettings steadySweep(int frames) {
    SimulationSettings settings;
    settings.size = {320, 240};
    settings.frames = frames;
    settings.speed = 10;
    settings.shake = settings.roll = 0;
    return settings;
}

ScenePlacement place(const SimulationSettings& settings, cv::Size photo) {
    return placeSweep(sceneExtent(cameraPath(settings), settings.size), photo, settings);
}

std::string refusal(const SimulationSettings& settings, cv::Size photo) {
    return test_support::complaintOf<ToolError>([&] { place(settings, photo); });
}

TEST(ScenePlacement, KeepsEveryFrameInsideThePhotograph) {
    SimulationSettings settings = steadySweep(50);
    settings.roll = 0.3;
    settings.shake = 20;
    for (const cv::Size photo : {cv::Size(2000, 1500), cv::Size(6000, 700), cv::Size(900, 900)}) {
        const ScenePlacement placement = place(settings, photo);
        for (const CameraPose& pose : cameraPath(settings))
            for (const cv::Point2d corner :
                 {cv::Point2d(-159.5, -119.5), {159.5, -119.5}, {-159.5, 119.5}, {159.5, 119.5}}) {
                const cv::Point2d scene =
                    cv::Point2d(pose.x, pose.y) + toCv(rotated(fromCv(corner), pose.a));
                const cv::Point2d p = placement.origin + placement.scale * scene;
                // Three sigmas of the lens and the filter's eight samples stay inside as well.
                const double border = 8 + 3 * placement.scale * settings.softness;
                EXPECT_GE(std::min(p.x, p.y), border);
                EXPECT_LE(p.x, photo.width - 1 - border);
                EXPECT_LE(p.y, photo.height - 1 - border);
            }
    }
}

TEST(ScenePlacement, RefusesASweepThatDoesNotFitAndNamesTheLongest) {
    const cv::Size photo(1000, 600);
    const std::string text = refusal(steadySweep(1000), photo);
    std::smatch found;
    ASSERT_TRUE(std::regex_search(text, found, std::regex("(\\d+) frames at this speed"))) << text;
    const int longest = std::stoi(found[1]);
    EXPECT_GT(longest, 100);
    EXPECT_EQ(refusal(steadySweep(longest), photo), "");
    EXPECT_NE(refusal(steadySweep(longest + 1), photo), "");
    for (const cv::Size tooSmall : {cv::Size(1000, 100), cv::Size(4, 4)})
        EXPECT_THAT(refusal(steadySweep(2), tooSmall), testing::HasSubstr("too small for any"));
}

TEST(ColourPlanes, HoldTheStandardsValuesOfPureRed) {
    struct Case {
        media::ColourMatrix matrix;
        float y, cb, cr;
    };
    const cv::Mat3b red(16, 16, cv::Vec3b(0, 0, 255));
    for (const Case& c : {Case{media::ColourMatrix::Bt601, 81, 90, 240},
                          {media::ColourMatrix::Bt709, 63, 102, 240}}) {
        const ColourPlanes planes = softPlanes(red, 1, c.matrix);
        EXPECT_NEAR(planes.y(8, 8), c.y, 0.6);
        EXPECT_NEAR(planes.cb(4, 4), c.cb, 0.6);
        EXPECT_NEAR(planes.cr(4, 4), c.cr, 0.6);
    }
}

TEST(Resampler, ReproducesASmoothPictureBetweenItsPixels) {
    const auto wave = [](double x, double y) { return std::sin(0.7 * x) * std::cos(0.9 * y + 1); };
    cv::Mat1f source(40, 50);
    for (int y = 0; y < source.rows; ++y)
        for (int x = 0; x < source.cols; ++x)
            source(y, x) = static_cast<float>(wave(x, y));
    const SamplingGrid grid{{6.3, 5.8}, {0.9, 0.1}, {-0.05, 0.8}};
    cv::Mat1f target(20, 30);
    resample(source, grid, target);
    for (int y = 0; y < target.rows; ++y)
        for (int x = 0; x < target.cols; ++x) {
            const cv::Point2d p = grid.at(x, y);
            ASSERT_NEAR(target(y, x), wave(p.x, p.y), 1e-3) << p;
        }
}

}  // namespace
}  // namespace orbitwalk::tool
