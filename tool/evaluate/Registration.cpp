#include "evaluate/Registration.h"

#include <algorithm>
#include <opencv2/calib3d.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/video/tracking.hpp>
#include <vector>

#include "render/FramePlanes.h"

namespace orbitwalk::tool {

namespace {

using Points = std::vector<cv::Point2f>;

constexpr int kFewestCorners = 10;

Points corners(const cv::Mat1b& picture) {
    constexpr int most = 500;
    constexpr double quality = 0.01, distance = 10;
    Points points;
    cv::goodFeaturesToTrack(picture, points, most, quality, distance, cv::noArray(), 5);
    return points;
}

/// Drops the corners that are lost, or that do not come back to where they started.
void follow(const cv::Mat1b& from, const cv::Mat1b& to, Points& start, Points& end) {
    const cv::Size window(21, 21);
    constexpr int levels = 4;
    constexpr double returnTolerance = 0.5;
    const cv::TermCriteria enough(cv::TermCriteria::COUNT | cv::TermCriteria::EPS, 30, 0.005);
    std::vector<std::uint8_t> there, back;
    Points returned;
    cv::calcOpticalFlowPyrLK(from, to, start, end, there, cv::noArray(), window, levels, enough);
    cv::calcOpticalFlowPyrLK(to, from, end, returned, back, cv::noArray(), window, levels, enough);
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

/// Longer side of the pictures that are matched: corrections of a tenth of the frame are then
/// within reach of the tracker.
constexpr int kMatchedSide = 640;

using Polygon = std::vector<cv::Point2f>;

/// Shows the picture's middle part, enlarged.
Affine zoom(double factor, cv::Size picture, cv::Size source) {
    const double x = source.width / factor / picture.width;
    const double y = source.height / factor / picture.height;
    return {x, 0, (source.width - 1) / 2.0 - x * (picture.width - 1) / 2.0,
            0, y, (source.height - 1) / 2.0 - y * (picture.height - 1) / 2.0};
}

/// Matches the picture with the source as the guess would show it. @return the better guess.
std::optional<PictureMatch> refined(const cv::Mat1b& picture, const cv::Mat1b& source,
                                    const Affine& guess) {
    cv::Mat1b shown;
    cv::warpAffine(source, shown, matrixOf(guess), picture.size(),
                   cv::INTER_LINEAR | cv::WARP_INVERSE_MAP);
    const auto match = matchPictures(picture, shown);
    if (!match)
        return std::nullopt;
    return PictureMatch{guess * match->map, match->support};
}

std::optional<Affine> search(const cv::Mat1b& picture, const cv::Mat1b& source) {
    std::optional<PictureMatch> best;
    for (const double factor : {1.0, 1.15, 1.35, 1.6}) {
        const auto match = refined(picture, source, zoom(factor, picture.size(), source.size()));
        if (match && (!best || match->support > best->support))
            best = match;
    }
    return best ? std::make_optional(best->map) : std::nullopt;
}

Polygon outline(cv::Size size, float margin) {
    const float left = -0.5f - margin;
    const float right = static_cast<float>(size.width) - 0.5f + margin;
    const float bottom = static_cast<float>(size.height) - 0.5f + margin;
    return {{left, left}, {right, left}, {right, bottom}, {left, bottom}};
}

double commonArea(const Polygon& a, const Polygon& b) {
    Polygon common;
    return cv::intersectConvexConvex(a, b, common);
}

}  // namespace

std::optional<PictureMatch> matchPictures(const cv::Mat1b& from, const cv::Mat1b& to) {
    Points start = corners(from);
    if (start.size() < kFewestCorners)
        return std::nullopt;
    Points end;
    follow(from, to, start, end);
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

std::optional<Affine> Registration::find(const cv::Mat1b& picture, const cv::Mat1b& source) {
    const int factor = reductionTo(kMatchedSide, source.size());
    const cv::Mat1b smallPicture = reducedPicture(picture, factor);
    const cv::Mat1b smallSource = reducedPicture(source, factor);
    if (!mLast)
        mLast = search(smallPicture, smallSource);
    auto match = mLast ? refined(smallPicture, smallSource, *mLast) : std::nullopt;
    mLast = match ? std::make_optional(match->map) : std::nullopt;
    return mLast ? std::make_optional(atFullSize(*mLast, factor)) : std::nullopt;
}

View viewOf(const Affine& sourceFromPicture, cv::Size picture, cv::Size source) {
    constexpr float tolerance = 2;
    Polygon shown = outline(picture, 0);
    for (cv::Point2f& corner : shown) {
        const PicturePoint p = sourceFromPicture({corner.x, corner.y});
        corner = {static_cast<float>(p.x), static_cast<float>(p.y)};
    }
    View view;
    view.kept = commonArea(shown, outline(source, 0)) / source.area();
    // The areas are in floats: a picture that lies inside may come out a trifle larger.
    view.beyond =
        std::max(0.0, 1 - commonArea(shown, outline(source, tolerance)) / cv::contourArea(shown));
    return view;
}

}  // namespace orbitwalk::tool
