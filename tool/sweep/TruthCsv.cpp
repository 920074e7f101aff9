#include "sweep/TruthCsv.h"

#include <array>
#include <cmath>

#include "files/OwnFiles.h"
#include "files/TextFile.h"
#include "orbitwalk/MetaData.h"
#include "sweep/CsvFields.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

bool parseRow(std::string_view line, int frame, Trajectory& row) {
    int number = 0;
    if (!takeField(line, number) || number != frame)
        return false;
    std::array<double, 6> values{};
    for (double& value : values)
        if (!takeField(line, value) || !std::isfinite(value))
            return false;
    row = {values[3], values[4], values[5]};
    return line.empty();
}

}  // namespace

std::string truthCsv(std::span<const TrueMotion> truth) {
    std::string csv(kTruthTableHeader);
    csv += '\n';
    for (std::size_t k = 0; k < truth.size(); ++k) {
        const auto& [step, sum] = truth[k];
        csv += std::to_string(k);
        for (const double value : {step.x, step.y, step.a, sum.x, sum.y, sum.a})
            appendField(csv, value);
        csv += '\n';
    }
    return csv;
}

std::vector<Trajectory> parseTruthCsv(std::string_view text) {
    if (takeLine(text) != kTruthTableHeader)
        throw ToolError("its first line is not " + std::string(kTruthTableHeader));
    std::vector<Trajectory> rows;
    while (!text.empty()) {
        Trajectory row;
        if (!parseRow(takeLine(text), static_cast<int>(rows.size()), row))
            throw ToolError("line " + std::to_string(rows.size() + 2) + " is no row of frame " +
                            std::to_string(rows.size()));
        rows.push_back(row);
    }
    return rows;
}

std::vector<Trajectory> readTruthCsv(const std::filesystem::path& file, int frames) {
    const std::string text = readTextFile(file);
    try {
        std::vector<Trajectory> rows = parseTruthCsv(text);
        if (frames == OBW_MAX_FRAMES && std::ssize(rows) > frames)
            rows.resize(frames);
        if (std::ssize(rows) != frames)
            throw ToolError("it has " + std::to_string(rows.size()) + " frames, the sweep has " +
                            std::to_string(frames));
        return rows;
    } catch (const ToolError& error) {
        throw ToolError(file.string() + ": no truth of this sweep: " + error.what());
    }
}

}  // namespace orbitwalk::tool
