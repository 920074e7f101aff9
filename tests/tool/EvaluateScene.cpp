#include "tool/EvaluateScene.h"

#include <cmath>
#include <opencv2/imgproc.hpp>

namespace test_support {
namespace {

/// Soft blotches some ten pixels wide, on a square that leaves room for pans of 300 pixels.
const cv::Mat1b& scene() {
    static const cv::Mat1b made = [] {
        cv::RNG random(3);
        cv::Mat1b blotches(140, 140), scene;
        random.fill(blotches, cv::RNG::UNIFORM, 30, 226);
        cv::resize(blotches, scene, {1400, 1400}, 0, 0, cv::INTER_CUBIC);
        return scene;
    }();
    return made;
}

}  // namespace

cv::Size pictureSize() {
    return {640, 480};
}

cv::Mat1b takePicture(const View& view) {
    const double c = std::cos(view.degrees * CV_PI / 180) / view.zoom;
    const double s = std::sin(view.degrees * CV_PI / 180) / view.zoom;
    const cv::Point2d middle((pictureSize().width - 1) / 2.0, (pictureSize().height - 1) / 2.0);
    const cv::Point2d seen((scene().cols - 1) / 2.0 + view.x, (scene().rows - 1) / 2.0 + view.y);
    const cv::Matx23d sceneFromPicture(c, s, seen.x - c * middle.x - s * middle.y, -s, c,
                                       seen.y + s * middle.x - c * middle.y);
    cv::Mat1b picture;
    cv::warpAffine(scene(), picture, sceneFromPicture, pictureSize(),
                   cv::INTER_LANCZOS4 | cv::WARP_INVERSE_MAP);
    return picture;
}

}  // namespace test_support
