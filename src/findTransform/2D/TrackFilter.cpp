#include "findTransform/2D/TrackFilter.h"

#include <cmath>

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

}  // namespace orbitwalk
