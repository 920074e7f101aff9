#include "evaluate/PictureQuality.h"

#include <algorithm>
#include <utility>

namespace orbitwalk::tool {

namespace {

constexpr int kBlack = 18;

/// Source pixel nearest to what a pixel of the picture shows, resolved to 1/1024 of a pixel as
/// OpenCV's warp does, so that both agree on what lies inside the source.
class NearestPixel {
  public:
    explicit NearestPixel(const Affine& sourceFromPicture) : mMap(sourceFromPicture) {}

    cv::Point operator()(int x, int y) const {
        return {nearest(mMap.xx * x, mMap.xy * y + mMap.x0),
                nearest(mMap.yx * x, mMap.yy * y + mMap.y0)};
    }

  private:
    static int nearest(double alongRow, double ofRow) {
        constexpr int bits = 10, scale = 1 << bits;
        return (cvRound(alongRow * scale) + cvRound(ofRow * scale) + scale / 2) >> bits;
    }

    Affine mMap;
};

bool isInside(cv::Point p, cv::Size size) {
    return p.x >= 0 && p.y >= 0 && p.x < size.width && p.y < size.height;
}

/// Collects the regions of pixels that are missing, as the predicate says of x and y, and join the
/// picture's edge. Looks at these and their neighbours alone: as a rule, at the edge.
template <typename IsMissing>
class EdgeFill {
  public:
    EdgeFill(cv::Size size, const IsMissing& isMissing) : mSize(size), mIsMissing(isMissing) {}

    EdgeRegions regions() {
        for (int x = 0; x < mSize.width; ++x)
            for (const int y : {0, mSize.height - 1})
                fill({x, y});
        for (int y = 1; y < mSize.height - 1; ++y)
            for (const int x : {0, mSize.width - 1})
                fill({x, y});
        return std::move(mRegions);
    }

  private:
    bool isNew(int x, int y) { return mIsMissing(x, y) && (mSeen.empty() || !mSeen(y, x)); }

    /// Of the neighbours, those above and below and beside.
    void fill(cv::Point from) {
        constexpr std::int64_t smallestRegion = 64;
        if (!isNew(from.x, from.y))
            return;
        if (mSeen.empty())
            mSeen = cv::Mat1b(mSize, 0);
        EdgeRegions region;
        mWaiting = {from};
        while (!mWaiting.empty()) {
            const cv::Point next = mWaiting.back();
            mWaiting.pop_back();
            if (isNew(next.x, next.y))
                region.push_back(runAt(next));
        }
        if (pixelsOf(region) >= smallestRegion)
            mRegions.insert(mRegions.end(), region.begin(), region.end());
    }

    PixelRun runAt(cv::Point p) {
        PixelRun run{p.y, p.x, p.x + 1};
        while (run.first > 0 && mIsMissing(run.first - 1, p.y))
            --run.first;
        while (run.end < mSize.width && mIsMissing(run.end, p.y))
            ++run.end;
        std::fill(&mSeen(p.y, run.first), &mSeen(p.y, run.first) + (run.end - run.first), 1);
        for (const int y : {p.y - 1, p.y + 1})
            if (y >= 0 && y < mSize.height)
                goOnIn(y, run);
        return run;
    }

    /// One pixel of each run in the row that adjoins another row's.
    void goOnIn(int y, const PixelRun& beside) {
        bool before = false;
        for (int x = beside.first; x < beside.end; ++x) {
            const bool now = isNew(x, y);
            if (now && !before)
                mWaiting.push_back({x, y});
            before = now;
        }
    }

    cv::Size mSize;
    const IsMissing& mIsMissing;
    cv::Mat1b mSeen;  ///< Empty until there is something to mark.
    std::vector<cv::Point> mWaiting;
    EdgeRegions mRegions;
};

}  // namespace

std::int64_t pixelsOf(const EdgeRegions& regions) {
    std::int64_t pixels = 0;
    for (const PixelRun& run : regions)
        pixels += run.end - run.first;
    return pixels;
}

EdgeRegions blackBorder(const cv::Mat1b& luma) {
    const auto isMissing = [&](int x, int y) { return luma(y, x) <= kBlack; };
    return EdgeFill(luma.size(), isMissing).regions();
}

EdgeRegions missingBorder(const cv::Mat1b& picture, const cv::Mat1b& source,
                          const Affine& sourceFromPicture) {
    constexpr int dark = 40;
    const NearestPixel shown(sourceFromPicture);
    const auto isMissing = [&](int x, int y) {
        if (picture(y, x) > kBlack)
            return false;
        const cv::Point p = shown(x, y);
        return !isInside(p, source.size()) || source(p) > dark;
    };
    return EdgeFill(picture.size(), isMissing).regions();
}

double hiddenShare(const EdgeRegions& missingBorder, cv::Size source,
                   const Affine& sourceFromPicture) {
    const Affine& m = sourceFromPicture;
    const double sourcePixels = m.xx * m.yy - m.xy * m.yx;  // That a pixel of the picture covers.
    const NearestPixel shown(m);
    int hidden = 0;
    for (const PixelRun& run : missingBorder)
        for (int x = run.first; x < run.end; ++x)
            hidden += isInside(shown(x, run.row), source);
    return hidden * sourcePixels / source.area();
}

}  // namespace orbitwalk::tool
