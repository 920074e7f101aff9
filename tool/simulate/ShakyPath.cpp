#include "simulate/ShakyPath.h"

#include <algorithm>
#include <cmath>

#include "orbitwalk/GeometryOpenCV.h"
#include "simulate/SimulationSettings.h"

namespace orbitwalk::tool {

namespace {

struct Wave {
    double amplitude = 0;
    double frequencyHz = 0;
    double phase = 0;

    double at(double seconds) const {
        return amplitude * std::sin(2 * CV_PI * frequencyHz * seconds + phase);
    }
};

std::vector<Wave> handWaves(double tremor, cv::RNG& random) {
    constexpr int driftWaves = 8, tremorWaves = 4;
    std::vector<Wave> waves;
    for (int i = 0; i < driftWaves; ++i) {
        const double frequency = random.uniform(0.5, 3.0);
        waves.push_back({1 / frequency, frequency, random.uniform(0.0, 2 * CV_PI)});
    }
    for (int i = 0; i < tremorWaves; ++i) {
        const double frequency = random.uniform(8.0, 12.0);
        waves.push_back({tremor, frequency, random.uniform(0.0, 2 * CV_PI)});
    }
    return waves;
}

}  // namespace

std::vector<double> handShake(int frames, double framesPerSecond, const ShakeStrength& strength,
                              cv::RNG random) {
    const std::vector<Wave> waves = handWaves(strength.tremor, random);
    std::vector<double> values(frames);
    double largest = 0;
    for (int k = 0; k < frames; ++k) {
        for (const Wave& wave : waves)
            values[k] += wave.at(k / framesPerSecond);
        largest = std::max(largest, std::abs(values[k]));
    }
    for (double& value : values)
        value *= largest > 0 ? strength.peak / largest : 0;
    return values;
}

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
    const cv::Point2d half = toCv(frameCentre(size));
    cv::Rect2d extent;
    for (const CameraPose& pose : poses) {
        const double c = std::abs(std::cos(pose.a)), s = std::abs(std::sin(pose.a));
        const cv::Point2d reach{c * half.x + s * half.y, s * half.x + c * half.y};
        const cv::Point2d centre{pose.x, pose.y};
        const cv::Rect2d frame{centre - reach, centre + reach};
        extent = extent.empty() ? frame : extent | frame;
    }
    return extent;
}

// A pose shows scene point C + R(a) (p - c) at pixel p, with c the frame's centre. Setting both
// poses' scene points equal and solving for the current pixel gives the map; here both pixels are
// taken relative to the measuring origin.
Trajectory motionBetween(const CameraPose& previous, const CameraPose& current, FrameSize size) {
    const double turn = previous.a - current.a;
    const PicturePoint origin = measuringOrigin(size) - frameCentre(size);
    const PicturePoint shift =
        rotated({previous.x - current.x, previous.y - current.y}, -current.a);
    const PicturePoint t = shift + rotated(origin, turn) - origin;
    return {t.x, t.y, turn};
}

std::vector<TrueMotion> trueMotions(std::span<const CameraPose> poses, FrameSize size) {
    std::vector<TrueMotion> rows(poses.size());
    for (std::size_t k = 1; k < poses.size(); ++k) {
        const Trajectory step = motionBetween(poses[k - 1], poses[k], size);
        rows[k] = {step, rows[k - 1].sum + step};
    }
    return rows;
}

}  // namespace orbitwalk::tool
