#include "simulate/Simulation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <opencv2/imgproc.hpp>

#include "orbitwalk/GeometryOpenCV.h"
#include "simulate/ColourPlanes.h"
#include "simulate/Scene.h"

namespace orbitwalk::tool {
namespace {

using Frame = std::vector<std::uint8_t>;

SimulationSettings smallSweep() {
    SimulationSettings settings;
    settings.size = {320, 240};
    settings.frames = 12;
    settings.speed = 5;
    settings.noise = 0;
    return settings;
}

Frame rendered(Simulation& simulation, int frame) {
    Frame i420(simulation.frameBytes());
    simulation.render(frame, i420);
    return i420;
}

cv::Mat1b luma(Frame& frame, FrameSize size) {
    return {size.height, size.width, frame.data()};
}

cv::Mat1f carried(const cv::Mat1f& previous, const cv::Vec3d& motion) {
    const PicturePoint o = measuringOrigin({previous.cols, previous.rows});
    const double back = -motion[2];
    const PicturePoint start = rotated({-o.x - motion[0], -o.y - motion[1]}, back) + o;
    cv::Mat1f picture(previous.size());
    resample(previous, {toCv(start), toCv(rotated({1, 0}, back)), toCv(rotated({0, 1}, back))},
             picture);
    return picture;
}

/// The motion that carries the previous frame onto the current one with the least squares of grey
/// levels over the middle, by Gauss and Newton's method from a first guess: accurate to thousandths
/// of a pixel, and independent of how the simulation places its camera.
cv::Vec3d measuredMotion(const cv::Mat1f& previous, const cv::Mat1f& current, cv::Vec3d motion) {
    const cv::Rect middle(40, 40, current.cols - 80, current.rows - 80);
    const cv::Vec3d step(0.02, 0.02, 1e-4);
    for (int iteration = 0; iteration < 4; ++iteration) {
        const cv::Mat error = current - carried(previous, motion);
        cv::Mat slope[3];
        cv::Matx33d normal;
        cv::Vec3d gradient;
        for (int i = 0; i < 3; ++i) {
            cv::Vec3d h;
            h[i] = step[i];
            slope[i] = (carried(previous, motion + h) - carried(previous, motion - h)) / (2 * h[i]);
            gradient[i] = slope[i](middle).dot(error(middle));
            for (int j = 0; j <= i; ++j)
                normal(i, j) = normal(j, i) = slope[i](middle).dot(slope[j](middle));
        }
        motion += normal.solve(gradient, cv::DECOMP_SVD);
    }
    return motion;
}

/// @param photo  empty for the simulation's own scene.
void expectPictureMovesByTruth(const SimulationSettings& settings, const cv::Mat3b& photo) {
    Simulation simulation(settings, photo);
    for (int k = 1; k < settings.frames; k += 10) {
        Frame before = rendered(simulation, k - 1), after = rendered(simulation, k);
        cv::Mat1f previous, current;
        luma(before, settings.size).convertTo(previous, CV_32F);
        luma(after, settings.size).convertTo(current, CV_32F);
        const Trajectory truth = simulation.truth()[k].step;
        const cv::Vec3d guess(truth.x + 0.3, truth.y - 0.3, truth.a + 0.002);
        const cv::Vec3d found = measuredMotion(previous, current, guess);
        EXPECT_NEAR(found[0], truth.x, 0.004) << "frame " << k;
        EXPECT_NEAR(found[1], truth.y, 0.004) << "frame " << k;
        EXPECT_NEAR(found[2], truth.a, 3e-5) << "frame " << k;
    }
}

TEST(Simulation, MovesItsPictureByTheTruth) {
    for (const auto direction : {SweepDirection::Left2Right, SweepDirection::Bottom2Top}) {
        SimulationSettings settings = smallSweep();
        settings.direction = direction;
        settings.softness = 1.5;
        expectPictureMovesByTruth(settings, {});
    }
}

TEST(Simulation, MovesAPhotographOfAnyScaleByTheTruth) {
    SimulationSettings settings = smallSweep();
    settings.roll = 0.05;
    settings.softness = 1.5;
    for (const double scale : {0.7, 1.8, 4.6}) {
        cv::Mat3b photo;
        cv::resize(texturedScene({480, 380}, cv::RNG(3)), photo, {}, scale, scale, cv::INTER_CUBIC);
        Simulation simulation(settings, photo);
        EXPECT_NEAR(simulation.photoScale(), scale, 0.25 * scale);
        expectPictureMovesByTruth(settings, photo);
    }
}

TEST(Simulation, GivesTheSameFramesForTheSameSettings) {
    SimulationSettings settings = smallSweep();
    settings.noise = 1.5;
    settings.object = 0.3;
    Simulation first(settings, {}), second(settings, {});
    EXPECT_EQ(rendered(first, 7), rendered(second, 7));
    // Frames do not depend on those before them.
    rendered(first, 2);
    EXPECT_EQ(rendered(first, 9), rendered(second, 9));
    settings.seed = 2;
    Simulation other(settings, {});
    EXPECT_NE(rendered(first, 0), rendered(other, 0));
}

TEST(Simulation, AddsNoiseOfTheStrengthAskedThatChangesFromFrameToFrame) {
    SimulationSettings settings = smallSweep();
    settings.noise = 3;
    Simulation simulation(settings, cv::Mat3b(400, 600, cv::Vec3b(128, 128, 128)));
    Frame before = rendered(simulation, 4), after = rendered(simulation, 5);
    cv::Scalar mean, deviation;
    cv::meanStdDev(luma(before, settings.size), mean, deviation);
    EXPECT_NEAR(mean[0], 16 + 128 * 219 / 255.0, 0.05);
    EXPECT_NEAR(deviation[0], std::sqrt(9 + 1 / 12.0), 0.06);  // A twelfth is the rounding's.
    // Independent frames differ by root two of that.
    const double difference = cv::norm(luma(before, settings.size), luma(after, settings.size));
    EXPECT_NEAR(difference / std::sqrt(320 * 240), std::sqrt(2 * (9 + 1 / 12.0)), 0.1);
}

TEST(Simulation, DriftsInExposureToTheFactorAsked) {
    SimulationSettings settings = smallSweep();
    settings.exposureDrift = -0.25;
    Simulation simulation(settings, cv::Mat3b(400, 600, cv::Vec3b(128, 128, 128)));
    Frame first = rendered(simulation, 0), last = rendered(simulation, settings.frames - 1);
    const double black = 16, grey = 128 * 219 / 255.0;
    EXPECT_NEAR(cv::mean(luma(first, settings.size))[0], black + grey, 0.5);
    EXPECT_NEAR(cv::mean(luma(last, settings.size))[0], black + 0.75 * grey, 0.5);
}

TEST(Simulation, LetsAnObjectCrossAgainstThePictureAndLeavesTheRestAlone) {
    SimulationSettings settings = smallSweep();
    Simulation plain(settings, {});
    settings.object = 0.4;
    Simulation crossed(settings, {});
    const auto changed = [&](int k) {
        Frame without = rendered(plain, k), with = rendered(crossed, k);
        cv::Mat1b difference;
        cv::absdiff(luma(without, settings.size), luma(with, settings.size), difference);
        return cv::boundingRect(difference > 0);
    };
    // Twelve frames take it from the left edge to the right: frame 3 is at 3 / 11 of the width. It
    // is 96 pixels tall, 57.6 wide, and its edge is a pixel softer.
    const cv::Rect early = changed(3), late = changed(8);
    EXPECT_NEAR(early.x + early.width / 2.0, 159.5 - 160 + 320 * 3 / 11.0, 3);
    EXPECT_NEAR(late.x + late.width / 2.0, 159.5 - 160 + 320 * 8 / 11.0, 3);
    EXPECT_NEAR(early.height, 97, 5);
    EXPECT_NEAR(early.width, 58, 5);
}

}  // namespace
}  // namespace orbitwalk::tool
