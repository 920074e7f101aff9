#include "PlainMeasurement.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "orbitwalk/MotionKernels.h"

// OpenCV's calls go by the names under which the library passes them on: OpenCV's own header of the
// tracker declares a function of a name that the engine exports, too.
namespace bench {

namespace {

constexpr std::size_t kFewest = 20;

cv::Mat centre(const cv::Mat& picture) {
    const int y = picture.rows / 5, x = picture.cols / 5;
    return picture(cv::Range(y, picture.rows - y), cv::Range(x, picture.cols - x));
}

float distance(cv::Point2f p, cv::Point2f q) {
    const float dx = p.x - q.x, dy = p.y - q.y;
    return std::sqrt(dx * dx + dy * dy);
}

/// Otsu's threshold over whole numbers; the middle of the first and the last best bin.
float otsu(const std::vector<float>& values) {
    std::map<int, int> histogram;
    float sum = 0;
    for (const float v : values) {
        ++histogram[static_cast<int>(v)];
        sum += v;
    }
    float below = 0, sumBelow = 0, best = 0;
    int first = 0, last = 0;
    for (int bin = 0; bin <= histogram.rbegin()->first; ++bin) {
        const auto here = histogram.find(bin);
        const int count = here == histogram.end() ? 0 : here->second;
        below += static_cast<float>(count);
        const float above = static_cast<float>(values.size()) - below;
        if (below == 0)
            continue;
        if (above == 0)
            break;
        sumBelow += static_cast<float>(count * bin);
        const double apart = sumBelow / below - (sum - sumBelow) / above;
        const auto between = static_cast<float>(static_cast<double>(below * above) * apart * apart);
        if (between >= best) {
            last = bin;
            first = between > best ? bin : first;
            best = between;
        }
    }
    return static_cast<float>(first + last) * 0.5f;
}

}  // namespace

cv::Mat PlainMeasurement::reduced(const std::uint8_t* luma) const {
    cv::Mat picture = cv::Mat::zeros(mHeight / 4, mWidth / 4, CV_8UC1);
    const int stepY = (mHeight << 16) / picture.rows + 1;
    const int stepX = (mWidth << 16) / picture.cols + 1;
    for (int y = 0; y < (picture.rows & ~7); ++y)
        for (int x = 0; x < (picture.cols & ~7); ++x)
            picture.at<std::uint8_t>(y, x) =
                luma[std::ptrdiff_t{(y * stepY) >> 16} * mWidth + ((x * stepX) >> 16)];
    return picture;
}

PlainMeasurement::Points PlainMeasurement::corners(const cv::Mat& view) {
    Points found;
    const double begin = mNow();
    NURV::goodFeaturesToTrack(view, found, 2000, 0.05, 10.0, cv::noArray(), 3, false, 0.04);
    mSeconds += mNow() - begin;
    mCorners += found.size();
    return found;
}

std::vector<unsigned char> PlainMeasurement::track(const cv::Mat& prev, const cv::Mat& cur,
                                                   const Points& from, Points& to) {
    const cv::TermCriteria criteria(cv::TermCriteria::COUNT + cv::TermCriteria::EPS, 30, 0.01);
    std::vector<unsigned char> status;
    std::vector<float> error;
    const double begin = mNow();
    NURV::calcOpticalFlowPyrLK(prev, cur, from, to, status, error, cv::Size(21, 21), 3, criteria, 0,
                               0.0001);
    mSeconds += mNow() - begin;
    return status;
}

bool PlainMeasurement::follow(const cv::Mat& prev, const cv::Mat& cur, Points& from, Points& to) {
    const Points found = corners(prev);
    if (found.size() < kFewest)
        return false;
    Points there, start, end, back;
    const auto status = track(prev, cur, found, there);
    for (std::size_t i = 0; i < found.size(); ++i)
        if (status[i] == 1 && distance(found[i], there[i]) < 50.0f) {
            start.push_back(found[i]);
            end.push_back(there[i]);
        }
    if (start.size() < kFewest)
        return false;
    const auto backStatus = track(cur, prev, end, back);
    std::size_t returned = 0;
    std::vector<float> tenths;
    for (std::size_t i = 0; i < end.size(); ++i) {
        if (backStatus[i] != 1 || !(distance(end[i], back[i]) < 50.0f))
            continue;
        ++returned;
        if (!(distance(start[i], back[i]) < 3.0f))
            continue;
        from.push_back(start[i]);
        to.push_back(end[i]);
        tenths.push_back(static_cast<float>(static_cast<int>(distance(start[i], end[i]) * 10.0)));
    }
    if (returned < kFewest || from.size() < kFewest)
        return false;
    std::vector<float> sorted = tenths;
    std::sort(sorted.begin(), sorted.end());
    const float threshold = otsu(sorted);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < tenths.size(); ++i)
        if (tenths[i] <= threshold) {
            from[kept] = from[i];
            to[kept++] = to[i];
        }
    from.resize(kept);
    to.resize(kept);
    return kept >= kFewest;
}

orbitwalk::Trajectory PlainMeasurement::measure(const std::uint8_t* luma) {
    mSeconds = 0;
    const cv::Mat picture = reduced(luma);
    if (!mPrevious.empty()) {
        Points from, to;
        if (follow(centre(mPrevious), centre(picture), from, to)) {
            const cv::Mat m = cv::estimateRigidTransform(from, to, false);
            if (!m.empty())
                mMotion = {m.at<double>(0, 2) * 4, m.at<double>(1, 2) * 4,
                           std::atan2(m.at<double>(1, 0), m.at<double>(0, 0))};
        }
        mSum += mMotion;
    }
    mPrevious = picture;
    return mSum;
}

}  // namespace bench
