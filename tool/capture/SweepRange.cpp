#include "capture/SweepRange.h"

#include <charconv>
#include <string>

#include "orbitwalk/MetaData.h"
#include "sweep/Summary.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

UsageError badList(std::string_view text) {
    std::string line("no list of frames such as 3,7,10-14, each at most ");
    line += std::to_string(OBW_MAX_FRAMES - 1);
    line += ": ";
    line += text;
    return UsageError(line);
}

/// The number at the front of the text, which is cut off; -1 when there is none.
int takeNumber(std::string_view& text) {
    int number = -1;
    const bool startsWithDigit = !text.empty() && text.front() >= '0' && text.front() <= '9';
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (!startsWithDigit || error != std::errc{} || number >= OBW_MAX_FRAMES)
        return -1;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

bool takeCharacter(std::string_view& text, char wanted) {
    if (!text.starts_with(wanted))
        return false;
    text.remove_prefix(1);
    return true;
}

void requireFrame(const char* option, int frame, int frames) {
    if (frame < 0 || frame >= frames)
        throw UsageError(std::string(option) + " " + std::to_string(frame) +
                         ": the sweep has the frames 0 to " + std::to_string(frames - 1));
}

bool isPortrait(int orientation) {
    return orientation == 90 || orientation == 270;
}

}  // namespace

std::set<int> parseFrameList(std::string_view text) {
    std::set<int> frames;
    std::string_view rest = text;
    do {
        const int first = takeNumber(rest);
        const int last = takeCharacter(rest, '-') ? takeNumber(rest) : first;
        if (first < 0 || last < first)
            throw badList(text);
        for (int frame = first; frame <= last; ++frame)
            frames.insert(frame);
    } while (takeCharacter(rest, ','));
    if (!rest.empty())
        throw badList(text);
    return frames;
}

SweepSelection selectRange(const RangeOptions& options, std::span<const Trajectory> path,
                           int orientation, bool frontCameraFlipped) {
    const int frames = static_cast<int>(path.size());
    SweepSelection selection{.first = options.first.value_or(0),
                             .last = options.last.value_or(frames - 1),
                             .flags = std::vector<std::int32_t>(path.size(), 1)};
    requireFrame("--first", selection.first, frames);
    requireFrame("--last", selection.last, frames);
    if (selection.first > selection.last)
        throw UsageError("--first " + std::to_string(selection.first) +
                         " is after the last frame, " + std::to_string(selection.last));
    for (const int frame : options.skip) {
        requireFrame("--skip", frame, frames);
        selection.flags[frame] = 0;
    }
    selection.direction = options.direction.value_or(sweepDirection(
        path[selection.first], path[selection.last], orientation, frontCameraFlipped));
    return selection;
}

OBWDirection sweepDirection(const Trajectory& from, const Trajectory& to, int orientation,
                            bool frontCameraFlipped) {
    const double motion = isPortrait(orientation) ? to.y - from.y : to.x - from.x;
    if (motion == 0)
        return OBW_DIRECTION_LEFT2RIGHT;
    const bool leftToRight = (motion < 0) != ((orientation == 270) != frontCameraFlipped);
    return leftToRight ? OBW_DIRECTION_LEFT2RIGHT : OBW_DIRECTION_RIGHT2LEFT;
}

bool isVertical(std::span<const Trajectory> path, int orientation, FrameSize size) {
    const bool portrait = isPortrait(orientation);
    const Trajectory extent = pathExtent(path);
    const double along = portrait ? extent.y : extent.x;
    const double across = portrait ? extent.x : extent.y;
    return across > 2 * along && across * 10 > (portrait ? size.width : size.height);
}

std::optional<int> orientationOfRotation(int degrees) {
    return degrees == 180 ? std::nullopt : std::optional((360 - degrees) % 360);
}

}  // namespace orbitwalk::tool
