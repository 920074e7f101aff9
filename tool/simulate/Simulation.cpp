#include "simulate/Simulation.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

#include "orbitwalk/GeometryOpenCV.h"
#include "simulate/ColourPlanes.h"
#include "simulate/Scene.h"
#include "simulate/SimulationSettings.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

constexpr double largestScenePixels = 100e6;  // About 2 GB while the scene is prepared.

cv::Mat3b ownScene(const cv::Rect2d& extent, const SimulationSettings& settings) {
    if ((extent.width + 100) * (extent.height + 100) > largestScenePixels)
        throw ToolError("the sweep is too long for a scene of its own");
    return texturedScene(sceneSize(extent, settings.softness),
                         randomStream(settings.seed, Randomness::Scene));
}

// The part of the photograph that the sweep sees.
cv::Mat3b croppedTo(const cv::Rect2d& extent, const cv::Mat3b& photo, double softness,
                    ScenePlacement& placement) {
    const double reach = 16 + placement.scale * (4 * softness + 4);
    const cv::Point2d border(reach, reach);
    const cv::Point2d from = placement.origin + placement.scale * extent.tl() - border;
    const cv::Point2d to = placement.origin + placement.scale * extent.br() + border;
    const cv::Rect part = cv::Rect(cv::Point(from), cv::Point(to)) & cv::Rect({}, photo.size());
    placement.origin -= cv::Point2d(part.tl());
    return photo(part);
}

// Reduces a photograph that is much finer than the clip, by a whole factor so that every pixel gets
// the same filter.
cv::Mat3b reduced(const cv::Mat3b& photo, ScenePlacement& placement) {
    const int factor = cvFloor(placement.scale / 2);
    if (factor < 2)
        return photo;
    cv::Mat3b result;
    const cv::Size size = photo.size() / factor;
    cv::resize(photo(cv::Rect({}, size * factor)), result, size, 0, 0, cv::INTER_AREA);
    const double middle = (factor - 1) / 2.0;
    placement.scale /= factor;
    placement.origin = (placement.origin - cv::Point2d(middle, middle)) / factor;
    return result;
}

// Sigma of the blur in the scene's pixels: the lens, and where the scene is finer than the clip,
// what a sensor's pixel averages.
double sceneBlur(double softness, double scale) {
    const double lens = softness * scale;
    const double pixel = 0.5 * std::sqrt(std::max(0.0, scale * scale - 1));
    return std::hypot(lens, pixel);
}

}  // namespace

Simulation::Simulation(const SimulationSettings& settings, const cv::Mat3b& photo)
    : mSettings(settings),
      mPoses(cameraPath(settings)),
      mTruth(trueMotions(mPoses, settings.size)),
      mMatrix(media::colourMatrixOf(settings.size.width, settings.size.height)),
      mPicture(blankPlanes({settings.size.width, settings.size.height})) {
    const cv::Rect2d extent = sceneExtent(mPoses, settings.size);
    prepareScene(photo.empty() ? ownScene(extent, settings) : photo, extent);
    if (settings.object > 0)
        mObject.emplace(settings, mMatrix);
}

void Simulation::prepareScene(const cv::Mat3b& photo, const cv::Rect2d& extent) {
    mPlacement = placeSweep(extent, photo.size(), mSettings);
    mPhotoScale = mPlacement.scale;
    const cv::Mat3b part = croppedTo(extent, photo, mSettings.softness, mPlacement);
    const cv::Mat3b scene = reduced(part, mPlacement);
    mScene = softPlanes(scene, sceneBlur(mSettings.softness, mPlacement.scale), mMatrix);
}

std::size_t Simulation::frameBytes() const {
    return static_cast<std::size_t>(mSettings.size.width) * mSettings.size.height * 3 / 2;
}

void Simulation::render(int frame, std::span<std::uint8_t> i420) {
    const CameraPose& pose = mPoses.at(frame);
    const double scale = mPlacement.scale;
    const cv::Point2d stepX = scale * toCv(rotated({1, 0}, pose.a));
    const cv::Point2d stepY = scale * toCv(rotated({0, 1}, pose.a));
    const cv::Point2d centre = toCv(frameCentre(mSettings.size));
    const cv::Point2d middle = mPlacement.origin + scale * cv::Point2d(pose.x, pose.y);
    resample(mScene, {middle - centre.x * stepX - centre.y * stepY, stepX, stepY}, mPicture);
    if (mObject)
        mObject->drawOver(mPicture, frame);
    const double progress = static_cast<double>(frame) / std::max(mSettings.frames - 1, 1);
    readOut(mPicture, {1 + mSettings.exposureDrift * progress, mSettings.noise},
            randomStream(mSettings.seed, Randomness::Noise, frame), i420);
}

}  // namespace orbitwalk::tool
