#include "simulate/MovingObject.h"

#include <algorithm>
#include <cmath>

#include "orbitwalk/GeometryOpenCV.h"
#include "simulate/Scene.h"
#include "simulate/ShakyPath.h"
#include "simulate/SimulationSettings.h"

namespace orbitwalk::tool {

namespace {

// Pixels of texture around the oval: what the resampling filter reaches into on the colour planes,
// and the soft edge.
constexpr int textureBorder = 16;

cv::Size textureSize(cv::Size2d halfAxes) {
    return {2 * (cvCeil(halfAxes.width) + textureBorder),
            2 * (cvCeil(halfAxes.height) + textureBorder)};
}

// Opacity at a point relative to the oval's middle: an edge of about two pixels.
float coverage(cv::Point2d p, cv::Size2d halfAxes) {
    const double radius = std::hypot(p.x / halfAxes.width, p.y / halfAxes.height);
    const double inside = (1 - radius) * std::min(halfAxes.width, halfAxes.height);
    return static_cast<float>(std::clamp(0.5 + inside / 2, 0.0, 1.0));
}

// Plane pixel p lies at frame pixel first + spacing * p.
struct PlaneGeometry {
    cv::Point2d first;
    double spacing;
};

void blend(const cv::Mat1f& texture, const SamplingGrid& grid, cv::Point2d centre,
           cv::Size2d halfAxes, const PlaneGeometry& geometry, cv::Mat1f& plane) {
    const cv::Point2d reach(halfAxes.width + 2, halfAxes.height + 2);
    const cv::Point2d from = (centre - reach - geometry.first) / geometry.spacing;
    const cv::Point2d to = (centre + reach - geometry.first) / geometry.spacing;
    const cv::Rect area = cv::Rect(cv::Point(cvFloor(from.x), cvFloor(from.y)),
                                   cv::Point(cvCeil(to.x) + 1, cvCeil(to.y) + 1)) &
                          cv::Rect({}, plane.size());
    if (area.empty())
        return;
    cv::Mat1f patch(area.size());
    resample(texture, {grid.at(area.x, area.y), grid.stepX, grid.stepY}, patch);
    for (int y = 0; y < area.height; ++y)
        for (int x = 0; x < area.width; ++x) {
            const cv::Point2d pixel =
                geometry.first + geometry.spacing * cv::Point2d(area.x + x, area.y + y);
            float& value = plane(area.y + y, area.x + x);
            value += coverage(pixel - centre, halfAxes) * (patch(y, x) - value);
        }
}

}  // namespace

MovingObject::MovingObject(const SimulationSettings& settings, media::ColourMatrix matrix) {
    const cv::Size2d frame(settings.size.width, settings.size.height);
    mHalfAxes = cv::Size2d(0.3, 0.5) * (settings.object * frame.height);
    const cv::Point2d direction = cameraStep(settings.direction);
    const cv::Point2d travel(direction.x * frame.width, direction.y * frame.height);
    mStart = toCv(frameCentre(settings.size)) - travel / 2;
    mStep = travel / std::max(settings.frames - 1, 1);
    const cv::Mat3b texture =
        texturedScene(textureSize(mHalfAxes), randomStream(settings.seed, Randomness::Object));
    mTexture = softPlanes(texture, settings.softness, matrix);
}

cv::Point2d MovingObject::centre(int frame) const {
    return mStart + frame * mStep;
}

void MovingObject::drawOver(ColourPlanes& picture, int frame) const {
    const cv::Point2d middle = centre(frame);
    const cv::Point2d textureMiddle((mTexture.y.cols - 1) / 2.0, (mTexture.y.rows - 1) / 2.0);
    const SamplingGrid luma{textureMiddle - middle, {1, 0}, {0, 1}};
    blend(mTexture.y, luma, middle, mHalfAxes, {{0, 0}, 1}, picture.y);
    const SamplingGrid colour{(luma.at(0, 0.5) - cv::Point2d(0.5, 0.5)) / 2, {1, 0}, {0, 1}};
    blend(mTexture.cb, colour, middle, mHalfAxes, {{0, 0.5}, 2}, picture.cb);
    blend(mTexture.cr, colour, middle, mHalfAxes, {{0, 0.5}, 2}, picture.cr);
}

}  // namespace orbitwalk::tool
