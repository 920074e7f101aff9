#include "render/Panorama.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

constexpr double kLongestSide = 16384;
constexpr double kMostPixels = 40e6;
constexpr double kSmallestScale = 0.1;

struct Extent {
    double left = std::numeric_limits<double>::infinity();
    double top = left;
    double right = -left;
    double bottom = -left;

    double width() const { return right - left; }
    double height() const { return bottom - top; }
};

void include(Extent& extent, PicturePoint point) {
    extent.left = std::min(extent.left, point.x);
    extent.right = std::max(extent.right, point.x);
    extent.top = std::min(extent.top, point.y);
    extent.bottom = std::max(extent.bottom, point.y);
}

/// The outer edges of the crop rectangle's pixels.
Extent cropExtent(const CropRectangle& crop, const Affine& map) {
    const double left = crop.x - 0.5, right = left + crop.width;
    const double top = crop.y - 0.5, bottom = top + crop.height;
    Extent extent;
    for (const PicturePoint corner :
         std::array<PicturePoint, 4>{{{left, top}, {right, top}, {left, bottom}, {right, bottom}}})
        include(extent, map(corner));
    return extent;
}

double canvasScale(const Extent& scene) {
    const double width = scene.width();
    const double height = scene.height();
    const double scale = std::min({1.0, kLongestSide / width, kLongestSide / height,
                                   std::sqrt(kMostPixels / (width * height))});
    if (!(scale >= kSmallestScale))
        throw ToolError("no panorama: the sweep spans " + std::to_string(std::llround(width)) +
                        "x" + std::to_string(std::llround(height)) +
                        " pixels, which cannot be its true path");
    return scale;
}

cv::Rect pixelBounds(const Extent& extent, cv::Size canvas) {
    const cv::Point from(cvFloor(extent.left + 0.5), cvFloor(extent.top + 0.5));
    const cv::Point to(cvCeil(extent.right + 0.5), cvCeil(extent.bottom + 0.5));
    return cv::Rect(from, to) & cv::Rect({}, canvas);
}

}  // namespace

PanoramaLayout layOut(const RecordReader& record, std::span<const Shot> shots,
                      std::span<const SimilarityTransform> motions) {
    std::vector<Affine> scenesFromPicture;
    Extent scene;
    Affine sceneFromFrame;
    int frame = shots.front().frame;
    auto motion = motions.begin();
    for (const Shot& shot : shots) {
        if (shot.frame != std::exchange(frame, shot.frame))
            sceneFromFrame = sceneFromFrame * inverse(affineOf(*++motion));
        scenesFromPicture.push_back(sceneFromFrame * shot.frameFromPicture);
        const Extent own = cropExtent(record.crop(), scenesFromPicture.back());
        include(scene, {own.left, own.top});
        include(scene, {own.right, own.bottom});
    }
    PanoramaLayout layout;
    layout.scale = canvasScale(scene);
    layout.canvas = {std::max(1, cvRound(scene.width() * layout.scale)),
                     std::max(1, cvRound(scene.height() * layout.scale))};
    const Affine canvasFromScene =
        enlargement(layout.scale, layout.scale) * translation(-scene.left - 0.5, -scene.top - 0.5);
    for (std::size_t i = 0; i < shots.size(); ++i) {
        const Affine map = canvasFromScene * scenesFromPicture[i];
        layout.placements.push_back(
            {shots[i], map, pixelBounds(cropExtent(record.crop(), map), layout.canvas)});
    }
    return layout;
}

}  // namespace orbitwalk::tool
