#include "simulate/CameraPath.h"

#include <algorithm>
#include <cmath>

#include "simulate/HandShake.h"
#include "simulate/RandomStream.h"

namespace orbitwalk::tool {

cv::Point2d cameraStep(SweepDirection direction) {
    switch (direction) {
        case SweepDirection::Left2Right:
            return {1, 0};
        case SweepDirection::Right2Left:
            return {-1, 0};
        case SweepDirection::Top2Bottom:
            return {0, 1};
        case SweepDirection::Bottom2Top:
            return {0, -1};
    }
    return {};
}

std::vector<CameraPose> cameraPath(const SimulationSettings& settings) {
    const double rate = static_cast<double>(settings.rate.numerator) / settings.rate.denominator;
    const auto shake = [&](const ShakeStrength& strength, Randomness axis) {
        return handShake(settings.frames, rate, strength, randomStream(settings.seed, axis));
    };
    // The arm that sweeps drifts off its line; the wrist keeps the phone level, and trembles.
    constexpr double tremorOfPlace = 2, tremorOfRoll = 4;
    const auto x = shake({settings.shake, tremorOfPlace}, Randomness::ShakeX);
    const auto y = shake({settings.shake, tremorOfPlace}, Randomness::ShakeY);
    const auto roll = shake({settings.roll, tremorOfRoll}, Randomness::Roll);
    const cv::Point2d step = cameraStep(settings.direction) * settings.speed;
    std::vector<CameraPose> poses(settings.frames);
    for (int k = 0; k < settings.frames; ++k)
        poses[k] = {step.x * k + x[k], step.y * k + y[k], roll[k]};
    return poses;
}

cv::Rect2d sceneExtent(std::span<const CameraPose> poses, FrameSize size) {
    const cv::Point2d half = frameCentre(size);
    cv::Rect2d extent;
    for (const CameraPose& pose : poses) {
        const double c = std::abs(std::cos(pose.roll)), s = std::abs(std::sin(pose.roll));
        const cv::Point2d reach{c * half.x + s * half.y, s * half.x + c * half.y};
        const cv::Point2d centre{pose.x, pose.y};
        const cv::Rect2d frame{centre - reach, centre + reach};
        extent = extent.empty() ? frame : extent | frame;
    }
    return extent;
}

}  // namespace orbitwalk::tool
