#include "simulate/Sensor.h"

namespace orbitwalk::tool {

namespace {

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

void readOut(const ColourPlanes& picture, const SensorSettings& settings, cv::RNG random,
             std::span<std::uint8_t> i420) {
    const PlaneResponse luma{16, settings.gain, settings.noise};
    const PlaneResponse colour{128, settings.gain, settings.noise / 2};
    auto rest = readOutPlane(picture.y, luma, random, i420);
    rest = readOutPlane(picture.cb, colour, random, rest);
    readOutPlane(picture.cr, colour, random, rest);
}

}  // namespace orbitwalk::tool
