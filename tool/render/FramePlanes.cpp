#include "render/FramePlanes.h"

#include <algorithm>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "media/ColourMatrix.h"

namespace orbitwalk::tool {

namespace {

cv::Mat1b fullSize(const cv::Mat1b& colour, cv::Size size) {
    cv::Mat1b enlarged;
    cv::warpAffine(colour, enlarged, matrixOf(inverse(kLumaFromColour)), size,
                   cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_REPLICATE);
    return enlarged;
}

/// Rows give blue, green and red from y, cb, cr and 1. @param kr, kb  weights of red and blue in
/// luma.
cv::Matx34f bgrFromVideo(float kr, float kb) {
    const float kg = 1 - kr - kb;
    const float luma = 255.0f / 219;
    const float colour = 255.0f / 112;
    const float blue = colour * (1 - kb);
    const float red = colour * (1 - kr);
    const cv::Matx33f linear(luma, blue, 0,                          //
                             luma, -blue * kb / kg, -red * kr / kg,  //
                             luma, 0, red);
    const cv::Vec3f black = linear * cv::Vec3f(16, 128, 128);
    cv::Matx34f matrix;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            matrix(row, column) = linear(row, column);
        matrix(row, 3) = -black[row];
    }
    return matrix;
}

bool isMissing(PicturePoint p, cv::Size size) {
    return p.x < -1 || p.y < -1 || p.x > size.width || p.y > size.height;
}

}  // namespace

std::size_t frameBytes(cv::Size size) {
    return std::size_t(size.width) * std::size_t(size.height) * 3 / 2;
}

FramePlanes planesOf(std::span<std::uint8_t> frame, cv::Size size) {
    CV_Assert(frame.size() == frameBytes(size));
    const std::size_t luma = std::size_t(size.width) * std::size_t(size.height);
    const auto view = [&](int scale, std::size_t offset) {
        return cv::Mat1b(size.height / scale, size.width / scale, frame.data() + offset);
    };
    return {view(1, 0), view(2, luma), view(2, luma + luma / 4)};
}

const FramePlanes planesOf(std::span<const std::uint8_t> frame, cv::Size size) {
    return planesOf(std::span(const_cast<std::uint8_t*>(frame.data()), frame.size()), size);
}

cv::Matx23d matrixOf(const Affine& map) {
    return {map.xx, map.xy, map.x0, map.yx, map.yy, map.y0};
}

cv::Mat3b toBgr(std::span<const std::uint8_t> frame, cv::Size size) {
    const FramePlanes planes = planesOf(frame, size);
    cv::Mat3b video;
    cv::merge(std::vector<cv::Mat>{planes.y, fullSize(planes.cb, size), fullSize(planes.cr, size)},
              video);
    const auto weights = media::lumaWeights(media::colourMatrixOf(size.width, size.height));
    cv::Mat3b picture;
    cv::transform(video, picture,
                  bgrFromVideo(static_cast<float>(weights.red), static_cast<float>(weights.blue)));
    return picture;
}

media::Picture pictureOf(const cv::Mat& picture) {
    const int channels = picture.channels();
    media::Picture result{picture.cols, picture.rows, channels,
                          std::vector<std::uint8_t>(picture.total() * picture.elemSize())};
    cv::Mat pixels(picture.size(), picture.type(), result.pixels.data());
    cv::cvtColor(picture, pixels, channels == 4 ? cv::COLOR_BGRA2RGBA : cv::COLOR_BGR2RGB);
    return result;
}

cv::Mat turned(const cv::Mat& picture, int degrees) {
    if (degrees == 0)
        return picture;
    cv::Mat result;
    cv::rotate(picture, result,
               degrees == 90 ? cv::ROTATE_90_CLOCKWISE : cv::ROTATE_90_COUNTERCLOCKWISE);
    return result;
}

void warpFrame(std::span<const std::uint8_t> frame, cv::Size size, const Affine& frameFromOutput,
               std::span<std::uint8_t> output) {
    const FramePlanes from = planesOf(frame, size);
    FramePlanes to = planesOf(output, size);
    const Affine colour = inverse(kLumaFromColour) * frameFromOutput * kLumaFromColour;
    warpBicubic(from.y, frameFromOutput, to.y);
    warpBicubic(from.cb, colour, to.cb);
    warpBicubic(from.cr, colour, to.cr);
}

std::int64_t missingPixels(cv::Size size, const Affine& frameFromOutput) {
    const double right = size.width - 1;
    const double bottom = size.height - 1;
    // The output is convex and so is the frame: corners inside, all inside.
    const PicturePoint corners[] = {{0, 0}, {right, 0}, {0, bottom}, {right, bottom}};
    if (std::ranges::none_of(
            corners, [&](PicturePoint corner) { return isMissing(frameFromOutput(corner), size); }))
        return 0;
    std::int64_t missing = 0;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            missing += isMissing(frameFromOutput({double(x), double(y)}), size);
    return missing;
}

}  // namespace orbitwalk::tool
