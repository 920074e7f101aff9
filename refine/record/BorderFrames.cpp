#include "record/BorderFrames.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace orbitwalk::refine {

namespace {

using Axis = double Placement::*;

/// A velocity v that falls evenly to rest within n frames: v n / (n + 1), ..., v / (n + 1).
double travel(double velocity, int frames) {
    return velocity * frames / 2;
}

/// An axis may stop at once when hardly anybody sees it.
bool isGentle(double velocity, int frames) {
    constexpr double unseen = 0.5;  // pixels a frame
    constexpr int fewest = 3;
    return frames >= fewest || std::abs(velocity) <= unseen;
}

/// The axis may move from where it was to where it ends, with the angle before or after.
bool fits(const Placement& end, double angleBefore, const Room& room) {
    Placement unturned = end;
    unturned.angle = angleBefore;
    return room.holds(end) && room.holds(unturned);
}

}  // namespace

std::vector<Placement> comingToRest(const Placement& from, const SimilarityTransform& step,
                                    const Room& room, int most) {
    constexpr std::array<Axis, 3> axes{&Placement::angle, &Placement::x, &Placement::y};
    const double radius = std::hypot(room.halfWidth, room.halfHeight);
    std::array<int, 3> frames{};
    Placement end = from;
    for (std::size_t i = 0; i < axes.size(); ++i) {
        const Axis axis = axes[i];
        for (frames[i] = most; frames[i] > 0; --frames[i]) {
            end.*axis = from.*axis + travel(step.*axis, frames[i]);
            if (fits(end, from.angle, room))
                break;
        }
        if (frames[i] == 0)
            end.*axis = from.*axis;
        if (!isGentle(step.*axis * (i == 0 ? radius : 1), frames[i]))
            return {};
    }
    std::vector<Placement> placements;
    for (int k = 1; k <= *std::ranges::max_element(frames); ++k) {
        Placement placement = from;
        for (std::size_t i = 0; i < axes.size(); ++i) {
            const int moving = std::min(k, frames[i]);
            placement.*axes[i] +=
                step.*axes[i] * moving * (2 * frames[i] + 1 - moving) / (2.0 * (frames[i] + 1));
        }
        placements.push_back(placement);
    }
    return placements;
}

}  // namespace orbitwalk::refine
