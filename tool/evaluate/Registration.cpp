#include "evaluate/Registration.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "render/FramePlanes.h"

namespace orbitwalk::tool {

namespace {

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

RegisteredPair::RegisteredPair(const cv::Mat1b& picture, const cv::Mat1b& source)
    : RegisteredPair(reductionTo(kMatchedSide, source.size()), picture, source) {}

RegisteredPair::RegisteredPair(int factor, const cv::Mat1b& picture, const cv::Mat1b& source)
    : mFactor(factor),
      mSize(picture.cols / factor, picture.rows / factor),
      mPicture(reducedPicture(picture, factor)),
      mSource(reducedPicture(source, factor)) {}

std::optional<PictureMatch> RegisteredPair::refined(const Affine& guess) const {
    cv::Mat1b shown;
    cv::warpAffine(mSource, shown, matrixOf(guess), mSize, cv::INTER_LINEAR | cv::WARP_INVERSE_MAP);
    const auto match = matchPictures(mPicture, pyramidOf(shown));
    if (!match)
        return std::nullopt;
    return PictureMatch{guess * match->map, match->support};
}

std::optional<Affine> RegisteredPair::search() const {
    std::optional<PictureMatch> best;
    for (const double factor : {1.0, 1.15, 1.35, 1.6}) {
        const auto match = refined(zoom(factor, mSize, mSource.size()));
        if (match && (!best || match->support > best->support))
            best = match;
    }
    return best ? std::make_optional(best->map) : std::nullopt;
}

std::optional<Affine> Registration::find(const RegisteredPair& pair) {
    if (!mLast)
        mLast = pair.search();
    const auto match = mLast ? pair.refined(*mLast) : std::nullopt;
    mLast = match ? std::make_optional(match->map) : std::nullopt;
    return mLast ? std::make_optional(atFullSize(*mLast, pair.factor())) : std::nullopt;
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
