#include "sweep/SweepTable.h"

#include <cmath>
#include <string>

#include "files/TextFile.h"
#include "sweep/CsvFields.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

constexpr std::string_view kHeader = "frame,x,y,a,flag,repeated";

bool parseRow(std::string_view line, int frame, SweepRow& row) {
    int number = 0;
    int repeated = 0;
    const bool complete = takeField(line, number) && takeField(line, row.x) &&
                          takeField(line, row.y) && takeField(line, row.a) &&
                          takeField(line, row.flag) && takeField(line, repeated) && line.empty();
    row.repeated = repeated == 1;
    const auto isBit = [](int value) { return value == 0 || value == 1; };
    return complete && isBit(row.flag) && isBit(repeated) && number == frame &&
           std::isfinite(row.x) && std::isfinite(row.y) && std::isfinite(row.a);
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
    const std::string text = readTextFile(file);
    try {
        std::vector<SweepRow> rows = parseSweepTable(text);
        if (static_cast<int>(rows.size()) != frames)
            throw ToolError("it has " + std::to_string(rows.size()) + " frames, the record says " +
                            std::to_string(frames));
        return rows;
    } catch (const ToolError& error) {
        throw ToolError(file.string() + ": no path of this sweep: " + error.what());
    }
}

}  // namespace orbitwalk::tool
