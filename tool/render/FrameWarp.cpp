#include "render/FrameWarp.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>

#include "render/FramePlanes.h"

namespace orbitwalk::tool {

namespace {

void warpPlane(const cv::Mat1b& frame, const Affine& map, cv::Mat1b output) {
    const cv::Matx23d matrix(map.xx, map.xy, map.x0, map.yx, map.yy, map.y0);
    cv::warpAffine(frame, output, matrix, output.size(), cv::INTER_CUBIC | cv::WARP_INVERSE_MAP,
                   cv::BORDER_REPLICATE);
}

bool isMissing(PicturePoint p, cv::Size size) {
    return p.x < -1 || p.y < -1 || p.x > size.width || p.y > size.height;
}

}  // namespace

void warpFrame(std::span<const std::uint8_t> frame, cv::Size size, const Affine& frameFromOutput,
               std::span<std::uint8_t> output) {
    const FramePlanes from = planesOf(frame, size);
    const FramePlanes to = planesOf(output, size);
    const Affine colour = inverse(kLumaFromColour) * frameFromOutput * kLumaFromColour;
    warpPlane(from.y, frameFromOutput, to.y);
    warpPlane(from.cb, colour, to.cb);
    warpPlane(from.cr, colour, to.cr);
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
