#include "findTransform/2D/TrackFilter.h"

#include <array>
#include <cmath>
#include <memory>
#include <new>

#include "common/FixedPoint.h"

namespace orbitwalk {

namespace {

constexpr float kLongestTrack = 50.0f;
constexpr float kLargestReturnError = 3.0f;
/// Tenths of a pixel: the longest tracks that are kept need no more.
constexpr int kUsualBins = 512;

/// Moves the tracks for which keep(index) holds to the front of every array and cuts the rest off.
template <typename Keep, typename... Arrays>
void keepTracks(std::size_t count, Keep keep, Arrays&... arrays) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (!keep(i))
            continue;
        ((arrays[kept] = arrays[i]), ...);
        ++kept;
    }
    (arrays.resize(kept), ...);
}

bool isFollowed(unsigned char status, cv::Point2f from, cv::Point2f to) {
    return status == 1 && distance(from, to) < kLongestTrack;
}

/// @param histogram  occupancy of each bin
/// @param count      number of values
/// @param sum        of the values
float bestSplit(std::span<const int> histogram, int count, float sum) {
    float weightBelow = 0, sumBelow = 0, largest = 0, lastBest = 0;
    int firstBest = 0;
    for (int bin = 0; bin < static_cast<int>(histogram.size()); ++bin) {
        weightBelow += static_cast<float>(histogram[bin]);
        if (weightBelow == 0)
            continue;
        const float weightAbove = static_cast<float>(count) - weightBelow;
        if (weightAbove == 0)
            break;
        sumBelow += static_cast<float>(histogram[bin] * bin);
        const float meanBelow = sumBelow / weightBelow;
        const float meanAbove = (sum - sumBelow) / weightAbove;
        const double difference = meanBelow - meanAbove;
        const float between = static_cast<float>(static_cast<double>(weightBelow * weightAbove) *
                                                 (difference * difference));
        if (between >= largest) {
            lastBest = static_cast<float>(bin);
            if (between > largest)
                firstBest = bin;
            largest = between;
        }
    }
    return static_cast<float>((lastBest + static_cast<float>(firstBest)) * 0.5);
}

}  // namespace

float distance(cv::Point2f p, cv::Point2f q) {
    const float dx = p.x - q.x;
    const float dy = p.y - q.y;
    return std::sqrt(dx * dx + dy * dy);
}

void loseTracksOutside(cv::Size picture, int window, std::span<const cv::Point2f> ends,
                       std::span<unsigned char> status) {
    const float half = static_cast<float>(window - 1) * 0.5f;
    for (std::size_t i = 0; i < ends.size(); ++i) {
        // Not as integers: what is no number becomes the smallest of them on one machine, 0 on
        // another.
        const float left = std::floor(ends[i].x - half), top = std::floor(ends[i].y - half);
        const bool inside =
            left >= static_cast<float>(-window) && left < static_cast<float>(picture.width) &&
            top >= static_cast<float>(-window) && top < static_cast<float>(picture.height);
        if (!inside)
            status[i] = 0;
    }
}

void dropLostTracks(std::span<const unsigned char> status, Points& from, Points& to) {
    keepTracks(
        status.size(), [&](std::size_t i) { return isFollowed(status[i], from[i], to[i]); }, from,
        to);
}

void dropLostTracks(std::span<const unsigned char> status, Points& from, Points& to,
                    Points& origins) {
    keepTracks(
        status.size(), [&](std::size_t i) { return isFollowed(status[i], from[i], to[i]); }, from,
        to, origins);
}

void keepConsistentTracks(Points& prev, Points& cur, Points& back,
                          std::vector<float>& displacements) {
    displacements.clear();
    const auto returns = [&](std::size_t i) {
        if (!(distance(prev[i], back[i]) < kLargestReturnError))
            return false;
        const double tenths = distance(prev[i], cur[i]) * 10.0;
        displacements.push_back(static_cast<float>(truncateToInt32(tenths)));
        return true;
    };
    keepTracks(cur.size(), returns, prev, cur, back);
}

void keepSmallerMotions(std::span<const float> displacements, float threshold, Points& prev,
                        Points& cur, Points& back) {
    keepTracks(
        displacements.size(), [&](std::size_t i) { return displacements[i] <= threshold; }, prev,
        cur, back);
}

std::optional<float> otsuThreshold(std::span<const float> values) {
    const int bins = values.empty() ? 0 : truncateToInt32(values.back() + 1.0f);
    if (bins < 1)
        return 0.0f;
    std::array<int, kUsualBins> usual{};
    std::unique_ptr<int[]> many;
    std::span<int> histogram(usual);
    if (bins > kUsualBins) {
        many.reset(new (std::nothrow) int[bins]());
        if (!many)
            return std::nullopt;
        histogram = {many.get(), static_cast<std::size_t>(bins)};
    }
    float sum = 0;
    for (const float value : values) {
        sum += value;
        histogram[static_cast<int>(value)] += 1;
    }
    return bestSplit(histogram.first(static_cast<std::size_t>(bins)),
                     static_cast<int>(values.size()), sum);
}

}  // namespace orbitwalk
