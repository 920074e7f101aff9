#include "evaluate/PictureMatch.h"

#include <algorithm>
#include <opencv2/calib3d.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/video/tracking.hpp>

namespace orbitwalk::tool {

namespace {

using Points = std::vector<cv::Point2f>;

constexpr std::size_t kFewestCorners = 10;
constexpr int kLevels = 4;

cv::Size window() {
    return {21, 21};
}

Points corners(const cv::Mat1b& picture) {
    constexpr int most = 500;
    constexpr double quality = 0.01, distance = 10;
    Points points;
    cv::goodFeaturesToTrack(picture, points, most, quality, distance, cv::noArray(), 5);
    return points;
}

/// Drops the corners that are lost, or that do not come back to where they started.
void follow(const Pyramid& from, const Pyramid& to, Points& start, Points& end) {
    constexpr double returnTolerance = 0.5;
    const cv::TermCriteria enough(cv::TermCriteria::COUNT | cv::TermCriteria::EPS, 30, 0.005);
    std::vector<std::uint8_t> there, back;
    Points returned;
    cv::calcOpticalFlowPyrLK(from, to, start, end, there, cv::noArray(), window(), kLevels, enough);
    cv::calcOpticalFlowPyrLK(to, from, end, returned, back, cv::noArray(), window(), kLevels,
                             enough);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < start.size(); ++i) {
        if (!there[i] || !back[i] || cv::norm(start[i] - returned[i]) > returnTolerance)
            continue;
        start[kept] = start[i];
        end[kept++] = end[i];
    }
    start.resize(kept);
    end.resize(kept);
}

}  // namespace

Pyramid pyramidOf(const cv::Mat1b& picture) {
    Pyramid pyramid;
    cv::buildOpticalFlowPyramid(picture, pyramid, window(), kLevels);
    return pyramid;
}

PictureCorners::PictureCorners(const cv::Mat1b& picture)
    : points(corners(picture)), pyramid(pyramidOf(picture)) {}

std::optional<PictureMatch> matchPictures(const PictureCorners& from, const Pyramid& to) {
    Points start = from.points;
    if (start.size() < kFewestCorners)
        return std::nullopt;
    Points end;
    follow(from.pyramid, to, start, end);
    if (start.size() < kFewestCorners)
        return std::nullopt;
    constexpr double tolerance = 1, confidence = 0.999, smallestShare = 0.25;
    constexpr std::size_t rounds = 2000, refinements = 20;
    cv::Mat agrees;
    const cv::Mat1d m = cv::estimateAffinePartial2D(start, end, agrees, cv::RANSAC, tolerance,
                                                    rounds, confidence, refinements);
    const int support = m.empty() ? 0 : cv::countNonZero(agrees);
    if (support < std::max(kFewestCorners * 1.0, smallestShare * static_cast<double>(start.size())))
        return std::nullopt;
    return PictureMatch{{m(0, 0), m(0, 1), m(0, 2), m(1, 0), m(1, 1), m(1, 2)}, support};
}

cv::Mat1b reducedPicture(const cv::Mat1b& picture, int factor) {
    if (factor == 1)
        return picture;
    const cv::Size size(picture.cols / factor, picture.rows / factor);
    cv::Mat1b reduced;
    cv::resize(picture({0, 0, size.width * factor, size.height * factor}), reduced, size, 0, 0,
               cv::INTER_AREA);
    return reduced;
}

int reductionTo(int limit, cv::Size size) {
    return std::max(1, (std::max(size.width, size.height) + limit - 1) / limit);
}

Affine atFullSize(const Affine& reduced, int factor) {
    const Affine enlarged = enlargement(factor, factor);
    return enlarged * reduced * inverse(enlarged);
}

}  // namespace orbitwalk::tool
