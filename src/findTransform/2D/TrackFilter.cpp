#include "findTransform/2D/TrackFilter.h"

#include <cmath>
#include <memory>
#include <new>

#include "common/FixedPoint.h"

namespace orbitwalk {

namespace {

constexpr float kLongestTrack = 50.0f;
constexpr float kLargestReturnError = 3.0f;

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

std::vector<float> keepConsistentTracks(Points& prev, Points& cur, Points& back) {
    std::vector<float> displacements;
    displacements.reserve(cur.size());
    const auto returns = [&](std::size_t i) {
        if (!(distance(prev[i], back[i]) < kLargestReturnError))
            return false;
        const double tenths = distance(prev[i], cur[i]) * 10.0;
        displacements.push_back(static_cast<float>(truncateToInt32(tenths)));
        return true;
    };
    keepTracks(cur.size(), returns, prev, cur, back);
    return displacements;
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
    const std::unique_ptr<int[]> histogram(new (std::nothrow) int[bins]());
    if (!histogram)
        return std::nullopt;
    float sum = 0;
    for (const float value : values) {
        sum += value;
        histogram[static_cast<int>(value)] += 1;
    }
    return bestSplit({histogram.get(), static_cast<std::size_t>(bins)},
                     static_cast<int>(values.size()), sum);
}

}  // namespace orbitwalk
