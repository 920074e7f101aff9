#include "evaluate/PictureQuality.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <opencv2/imgproc.hpp>

#include "render/FramePlanes.h"

namespace orbitwalk::tool {

namespace {

/// Sum of the squared gradients of a row where the mask says so.
std::int64_t squaredGradients(const short* dx, const short* dy, const uchar* mask, int width) {
    std::int64_t sum = 0;
    for (int x = 0; x < width; ++x) {
        const int squares = dx[x] * dx[x] + dy[x] * dy[x];
        sum += mask[x] ? squares : 0;
    }
    return sum;
}

/// Takes the picture in bands that stay in the processor's cache.
double gradientRms(const cv::Mat1b& picture, const cv::Mat1b& mask) {
    constexpr int rows = 32;
    std::int64_t sum = 0, pixels = 0;
    cv::Mat1s dx, dy;
    for (int top = 0; top < picture.rows; top += rows) {
        const cv::Range band(top, std::min(top + rows, picture.rows));
        cv::Sobel(picture.rowRange(band), dx, CV_16S, 1, 0);
        cv::Sobel(picture.rowRange(band), dy, CV_16S, 0, 1);
        for (int y = 0; y < band.size(); ++y)
            sum += squaredGradients(dx[y], dy[y], mask[top + y], picture.cols);
        pixels += cv::countNonZero(mask.rowRange(band));
    }
    return pixels > 0 ? std::sqrt(static_cast<double>(sum) / static_cast<double>(pixels)) : 0;
}

/// Where the picture lies inside the source.
cv::Mat1b inside(cv::Size source, const Affine& sourceFromPicture, cv::Size picture) {
    cv::Mat1b mask;
    cv::warpAffine(cv::Mat1b(source, 255), mask, matrixOf(sourceFromPicture), picture,
                   cv::INTER_NEAREST | cv::WARP_INVERSE_MAP);
    return mask;
}

}  // namespace

std::optional<double> relativeSharpness(const cv::Mat1b& picture, const cv::Mat1b& source,
                                        const Affine& sourceFromPicture,
                                        const EdgeRegions& missingBorder) {
    cv::Mat1b shown(picture.size());
    warpLanczos(source, sourceFromPicture, shown);
    cv::Mat1b common = inside(source.size(), sourceFromPicture, picture.size());
    for (const PixelRun& run : missingBorder)
        common.row(run.row).colRange(run.first, run.end) = 0;
    // Away from the seams: an interpolation reaches four pixels, the gradient one more.
    cv::erode(common, common, cv::getStructuringElement(cv::MORPH_RECT, {15, 15}));
    const double possible = gradientRms(shown, common);
    return possible > 0 ? std::make_optional(gradientRms(picture, common) / possible)
                        : std::nullopt;
}

}  // namespace orbitwalk::tool
