#include "simulate/ColourPlanes.h"

#include <opencv2/imgproc.hpp>

namespace orbitwalk::tool {

namespace {

// From blue, green, red and one to limited range. Computed on the gamma-coded values, as a camera
// does.
cv::Matx34f videoMatrix(media::ColourMatrix matrix) {
    const auto [kr, kb] = media::lumaWeights(matrix);
    const double kg = 1 - kr - kb;
    constexpr double luma = 219 / 255.0, colour = 112 / 255.0;
    const double u = colour / (1 - kb), v = colour / (1 - kr);
    return cv::Matx34d(luma * kb, luma * kg, luma * kr, 16,  //
                       u * (1 - kb), -u * kg, -u * kr, 128,  //
                       -v * kb, -v * kg, v * (1 - kr), 128);
}

void soften(cv::Mat1f& plane, double sigma) {
    if (sigma <= 0)
        return;
    const int side = 2 * cvCeil(4 * sigma) + 1;
    cv::GaussianBlur(plane, plane, {side, side}, sigma, sigma, cv::BORDER_REFLECT_101);
}

// Averages of two by two: pixel i lies at 2 i + 0.5 of the full plane.
cv::Mat1f halved(const cv::Mat1f& plane) {
    cv::Mat1f half;
    cv::resize(plane(cv::Rect(0, 0, plane.cols & ~1, plane.rows & ~1)), half, {}, 0.5, 0.5,
               cv::INTER_AREA);
    return half;
}

struct PlaneResponse {
    double base;  // Value that exposure leaves alone: black, or grey.
    double gain;
    double noise;
};

std::span<std::uint8_t> readOutPlane(const cv::Mat1f& plane, const PlaneResponse& response,
                                     cv::RNG& random, std::span<std::uint8_t> out) {
    cv::Mat1f exposed;
    plane.convertTo(exposed, CV_32F, response.gain, response.base * (1 - response.gain));
    if (response.noise > 0) {
        cv::Mat1f noise(plane.size());
        random.fill(noise, cv::RNG::NORMAL, 0, response.noise);
        exposed += noise;
    }
    CV_Assert(out.size() >= plane.total());
    cv::Mat1b target(plane.rows, plane.cols, out.data());
    exposed.convertTo(target, CV_8U);
    return out.subspan(plane.total());
}

}  // namespace

ColourPlanes blankPlanes(cv::Size size) {
    const cv::Size half = size / 2;
    return {cv::Mat1f(size), cv::Mat1f(half), cv::Mat1f(half)};
}

ColourPlanes softPlanes(const cv::Mat3b& bgr, double sigma, media::ColourMatrix matrix) {
    cv::Mat3f ycc;
    bgr.convertTo(ycc, CV_32F);
    cv::transform(ycc, ycc, videoMatrix(matrix));
    ColourPlanes planes;
    cv::extractChannel(ycc, planes.y, 0);
    cv::Mat1f full;
    for (const auto& [channel, plane] : {std::pair{1, &planes.cb}, {2, &planes.cr}}) {
        cv::extractChannel(ycc, full, channel);
        *plane = halved(full);
        soften(*plane, sigma);
    }
    soften(planes.y, sigma);
    return planes;
}

void resample(const ColourPlanes& scene, const SamplingGrid& grid, ColourPlanes& frame) {
    resample(scene.y, grid, frame.y);
    // Colour samples sit on every second column, halfway between two rows (H.264's default siting).
    const cv::Point2d start = grid.at(0, 0.5);
    const SamplingGrid half{(start - cv::Point2d(0.5, 0.5)) / 2, grid.stepX, grid.stepY};
    resample(scene.cb, half, frame.cb);
    resample(scene.cr, half, frame.cr);
}

void readOut(const ColourPlanes& picture, const SensorSettings& settings, cv::RNG random,
             std::span<std::uint8_t> i420) {
    const PlaneResponse luma{16, settings.gain, settings.noise};
    const PlaneResponse colour{128, settings.gain, settings.noise / 2};
    auto rest = readOutPlane(picture.y, luma, random, i420);
    rest = readOutPlane(picture.cb, colour, random, rest);
    readOutPlane(picture.cr, colour, random, rest);
}

}  // namespace orbitwalk::tool
