#include "common/SweepTable.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "common/ToolError.h"

namespace orbitwalk::tool {

namespace {

constexpr std::string_view kHeader = "frame,x,y,a,flag,repeated";

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

/// Cuts the next field off the line. @return whether it is a number of the wanted kind.
template <typename Number>
bool takeField(std::string_view& line, Number& value) {
    const std::size_t comma = std::min(line.find(','), line.size());
    const char* end = line.data() + comma;
    const auto [stop, error] = std::from_chars(line.data(), end, value);
    line.remove_prefix(std::min(comma + 1, line.size()));
    return error == std::errc{} && stop == end;
}

bool parseRow(std::string_view line, int frame, SweepRow& row) {
    int number = 0;
    int repeated = 0;
    const bool complete = takeField(line, number) && takeField(line, row.x) &&
                          takeField(line, row.y) && takeField(line, row.a) &&
                          takeField(line, row.flag) && takeField(line, repeated) && line.empty();
    row.repeated = repeated == 1;
    return complete && number == frame && std::isfinite(row.x) && std::isfinite(row.y) &&
           std::isfinite(row.a);
}

}  // namespace

std::vector<SweepRow> parseSweepTable(std::string_view text) {
    if (takeLine(text) != kHeader)
        throw ToolError("its first line is not " + std::string(kHeader));
    std::vector<SweepRow> rows;
    while (!text.empty()) {
        SweepRow row;
        if (!parseRow(takeLine(text), static_cast<int>(rows.size()), row))
            throw ToolError("line " + std::to_string(rows.size() + 2) + " is no row of frame " +
                            std::to_string(rows.size()));
        rows.push_back(row);
    }
    return rows;
}

std::vector<SweepRow> readSweepTable(const std::filesystem::path& file, int frames) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    if (!stream || !(text << stream.rdbuf()))
        throw ToolError(file.string() + ": " + std::strerror(errno));
    try {
        std::vector<SweepRow> rows = parseSweepTable(text.str());
        if (static_cast<int>(rows.size()) != frames)
            throw ToolError("it has " + std::to_string(rows.size()) + " frames, the record says " +
                            std::to_string(frames));
        return rows;
    } catch (const ToolError& error) {
        throw ToolError(file.string() + ": no path of this sweep: " + error.what());
    }
}

}  // namespace orbitwalk::tool
