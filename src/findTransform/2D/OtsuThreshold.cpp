#include "findTransform/2D/OtsuThreshold.h"

#include <memory>
#include <new>

#include "common/FixedPoint.h"

namespace orbitwalk {
namespace {

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
