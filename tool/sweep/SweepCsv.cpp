#include "sweep/SweepCsv.h"

#include <charconv>

namespace orbitwalk::tool {
namespace {

void append(std::string& text, float value) {
    char digits[64];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    text += ',';
}

}  // namespace

std::string sweepCsv(std::span<const PathPoint> path, std::span<const std::int32_t> flags,
                     const std::set<int>& repeatedFrames) {
    std::string csv = "frame,x,y,a,flag,repeated\n";
    for (std::size_t i = 0; i < path.size(); ++i) {
        csv += std::to_string(i) + ',';
        append(csv, path[i].x);
        append(csv, path[i].y);
        append(csv, path[i].a);
        csv += std::to_string(flags[i]) + ',';
        csv += repeatedFrames.contains(static_cast<int>(i)) ? "1\n" : "0\n";
    }
    return csv;
}

}  // namespace orbitwalk::tool
