#include "render/FramePlanes.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "media/ColourMatrix.h"

namespace orbitwalk::tool {

namespace {

cv::Mat1b fullSize(const cv::Mat1b& colour, cv::Size size) {
    const Affine map = inverse(kLumaFromColour);
    const cv::Matx23d matrix(map.xx, map.xy, map.x0, map.yx, map.yy, map.y0);
    cv::Mat1b enlarged;
    cv::warpAffine(colour, enlarged, matrix, size, cv::INTER_LINEAR | cv::WARP_INVERSE_MAP,
                   cv::BORDER_REPLICATE);
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

}  // namespace orbitwalk::tool
