#include "simulate/Scene.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

// Photo pixels at each edge that the resampling filter needs: four samples of the half-size colour
// planes, and one for rounding.
constexpr double filterReach = 9;

// Scene pixels at each edge that the lens blurs into the picture: three sigmas of softness and of
// the half pixel that keeps a finer photograph from aliasing.
double lensReach(double softness) {
    return 3 * softness + 2;
}

double largestScale(double extent, int photo, double softness) {
    return (photo - 2 * filterReach) / (extent + 2 * lensReach(softness));
}

double largestExtent(int photo, double softness) {
    return (photo - 2 * filterReach) / smallestPhotoScale - 2 * lensReach(softness);
}

[[noreturn]] void refuse(const cv::Rect2d& extent, cv::Size photo,
                         const SimulationSettings& settings) {
    const double excessX = extent.width - largestExtent(photo.width, settings.softness);
    const double excessY = extent.height - largestExtent(photo.height, settings.softness);
    const bool horizontal = settings.direction == SweepDirection::Left2Right ||
                            settings.direction == SweepDirection::Right2Left;
    const double travel = settings.speed * (settings.frames - 1);
    const double longest = travel - (horizontal ? excessX : excessY);
    const bool tooSmall = (horizontal ? excessY : excessX) > 0 || longest < 0;
    char text[200];
    if (tooSmall)
        std::snprintf(text, sizeof text,
                      "the photograph (%dx%d) is too small for any sweep of %dx%d frames",
                      photo.width, photo.height, settings.size.width, settings.size.height);
    else
        std::snprintf(text, sizeof text,
                      "the sweep of %.0f pixels does not fit the photograph (%dx%d): the longest "
                      "possible is %.0f pixels, %d frames at this speed",
                      travel, photo.width, photo.height, longest,
                      static_cast<int>(longest / settings.speed) + 1);
    throw ToolError(text);
}

}  // namespace

cv::Size sceneSize(const cv::Rect2d& extent, double softness) {
    const double border = 2 * (lensReach(softness) + filterReach);
    return {cvCeil(extent.width + border), cvCeil(extent.height + border)};
}

ScenePlacement placeSweep(const cv::Rect2d& extent, cv::Size photo,
                          const SimulationSettings& settings) {
    const double scale = std::min(largestScale(extent.width, photo.width, settings.softness),
                                  largestScale(extent.height, photo.height, settings.softness));
    if (scale < smallestPhotoScale)
        refuse(extent, photo, settings);
    const cv::Point2d photoCentre{(photo.width - 1) / 2.0, (photo.height - 1) / 2.0};
    const cv::Point2d extentCentre = (extent.tl() + extent.br()) / 2;
    return {scale, photoCentre - scale * extentCentre};
}

}  // namespace orbitwalk::tool
