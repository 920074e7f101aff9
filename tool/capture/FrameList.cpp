#include "capture/FrameList.h"

#include <charconv>
#include <string>

#include "orbitwalk/MetaData.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

ToolError badList(std::string_view text) {
    std::string line("no list of frames such as 3,7,10-14, each at most ");
    line += std::to_string(OBW_MAX_FRAMES - 1);
    line += ": ";
    line += text;
    return ToolError(line);
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

}  // namespace orbitwalk::tool
