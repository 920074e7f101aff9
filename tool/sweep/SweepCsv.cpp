#include "sweep/SweepCsv.h"

#include <cmath>

#include "files/OwnFiles.h"
#include "files/TextFile.h"
#include "sweep/CsvFields.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

bool parseRow(std::string_view line, int frame, SweepRow& row) {
    int number = 0;
    int repeated = 0;
    float x = 0, y = 0, a = 0;
    const bool complete = takeField(line, number) && takeField(line, x) && takeField(line, y) &&
                          takeField(line, a) && takeField(line, row.flag) &&
                          takeField(line, repeated) && line.empty();
    row.position = {x, y, a};
    row.repeated = repeated == 1;
    const auto isBit = [](int value) { return value == 0 || value == 1; };
    return complete && isBit(row.flag) && isBit(repeated) && number == frame && std::isfinite(x) &&
           std::isfinite(y) && std::isfinite(a);
}

}  // namespace

PicturePoint measuringOrigin(FrameSize size) {
    constexpr int reduction = 4, border = 5;
    return {static_cast<double>(reduction * (size.width / reduction / border)),
            static_cast<double>(reduction * (size.height / reduction / border))};
}

std::string sweepCsv(std::span<const SweepRow> path) {
    std::string csv(kSweepTableHeader);
    csv += '\n';
    for (std::size_t i = 0; i < path.size(); ++i) {
        csv += std::to_string(i);
        const Trajectory& p = path[i].position;
        for (const double value : {p.x, p.y, p.a})
            appendField(csv, static_cast<float>(value));
        for (const int value : {path[i].flag, int{path[i].repeated}})
            appendField(csv, value);
        csv += '\n';
    }
    return csv;
}

std::vector<SweepRow> parseSweepCsv(std::string_view text) {
    if (takeLine(text) != kSweepTableHeader)
        throw ToolError("its first line is not " + std::string(kSweepTableHeader));
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

std::vector<SweepRow> readSweepCsv(const std::filesystem::path& file, int frames) {
    const std::string text = readTextFile(file);
    try {
        std::vector<SweepRow> rows = parseSweepCsv(text);
        if (std::ssize(rows) != frames)
            throw ToolError("it has " + std::to_string(rows.size()) + " frames, the record says " +
                            std::to_string(frames));
        return rows;
    } catch (const ToolError& error) {
        throw ToolError(file.string() + ": no path of this sweep: " + error.what());
    }
}

}  // namespace orbitwalk::tool
