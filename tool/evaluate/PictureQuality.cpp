#include "evaluate/PictureQuality.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <set>
#include <vector>

#include "render/FramePlanes.h"

namespace orbitwalk::tool {

namespace {

double gradientRms(const cv::Mat1b& picture, const cv::Mat1b& mask) {
    cv::Mat1f dx, dy;
    cv::Sobel(picture, dx, CV_32F, 1, 0);
    cv::Sobel(picture, dy, CV_32F, 0, 1);
    return std::sqrt(cv::mean(dx.mul(dx) + dy.mul(dy), mask)[0]);
}

std::set<int> labelsAtEdge(const cv::Mat1i& labels) {
    std::set<int> found;
    for (const cv::Mat& edge : {cv::Mat(labels.row(0)), cv::Mat(labels.row(labels.rows - 1)),
                                cv::Mat(labels.col(0)), cv::Mat(labels.col(labels.cols - 1))})
        found.insert(edge.begin<int>(), edge.end<int>());
    found.erase(0);
    return found;
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
                                        const cv::Mat1b& missingBorder) {
    cv::Mat1b shown;
    cv::warpAffine(source, shown, matrixOf(sourceFromPicture), picture.size(),
                   cv::INTER_LANCZOS4 | cv::WARP_INVERSE_MAP);
    cv::Mat1b common = inside(source.size(), sourceFromPicture, picture.size());
    common.setTo(0, missingBorder);
    // Away from the seams: an interpolation reaches four pixels, the gradient one more.
    cv::erode(common, common, cv::getStructuringElement(cv::MORPH_RECT, {15, 15}));
    const double possible = gradientRms(shown, common);
    return possible > 0 ? std::make_optional(gradientRms(picture, common) / possible)
                        : std::nullopt;
}

cv::Mat1b blackBorder(const cv::Mat1b& luma) {
    constexpr int black = 18, smallestRegion = 64;
    cv::Mat1i labels, stats;
    cv::Mat centres;
    cv::connectedComponentsWithStats(luma <= black, labels, stats, centres, 4);
    std::vector<uchar> values(stats.rows, 0);
    for (const int label : labelsAtEdge(labels))
        values[label] = stats(label, cv::CC_STAT_AREA) >= smallestRegion ? 255 : 0;
    cv::Mat1b border(luma.size());
    std::ranges::transform(labels, border.begin(), [&](int label) { return values[label]; });
    return border;
}

cv::Mat1b missingBorder(const cv::Mat1b& picture, const cv::Mat1b& source,
                        const Affine& sourceFromPicture) {
    constexpr int dark = 40;
    cv::Mat1b shown;
    cv::warpAffine(source, shown, matrixOf(sourceFromPicture), picture.size(),
                   cv::INTER_NEAREST | cv::WARP_INVERSE_MAP, cv::BORDER_CONSTANT, 255);
    cv::Mat1b unexplained = picture.clone();
    unexplained.setTo(255, shown <= dark);
    return blackBorder(unexplained);
}

double hiddenShare(const cv::Mat1b& missingBorder, cv::Size source,
                   const Affine& sourceFromPicture) {
    const Affine& m = sourceFromPicture;
    const double sourcePixels = m.xx * m.yy - m.xy * m.yx;  // That a pixel of the picture covers.
    const int hidden = cv::countNonZero(missingBorder & inside(source, m, missingBorder.size()));
    return hidden * sourcePixels / source.area();
}

}  // namespace orbitwalk::tool
