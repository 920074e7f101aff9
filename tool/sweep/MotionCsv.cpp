#include "sweep/MotionCsv.h"

#include <cmath>

#include "files/OwnFiles.h"
#include "files/TextFile.h"
#include "sweep/CsvFields.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

bool parseRow(std::string_view line, int frame, refine::FrameMotion& row) {
    int number = 0;
    int measured = 0;
    auto& motion = row.motion;
    const bool complete = takeField(line, number) && takeField(line, motion.x) &&
                          takeField(line, motion.y) && takeField(line, motion.angle) &&
                          takeField(line, motion.logScale) && takeField(line, measured) &&
                          line.empty();
    row.measured = measured == 1;
    return complete && number == frame && (measured == 0 || measured == 1) &&
           std::isfinite(motion.x) && std::isfinite(motion.y) && std::isfinite(motion.angle) &&
           std::isfinite(motion.logScale);
}

}  // namespace

std::string motionCsv(std::span<const refine::FrameMotion> motions) {
    std::string csv = std::string(kMotionTableHeader) + '\n';
    for (std::size_t i = 0; i < motions.size(); ++i) {
        const SimilarityTransform motion =
            motions[i].measured ? motions[i].motion : SimilarityTransform{};
        csv += std::to_string(i);
        for (const double value : {motion.x, motion.y, motion.angle, motion.logScale})
            appendField(csv, value);
        csv += motions[i].measured ? ",1\n" : ",0\n";
    }
    return csv;
}

std::vector<refine::FrameMotion> parseMotionCsv(std::string_view text, FrameSize size) {
    if (takeLine(text) != kMotionTableHeader)
        throw ToolError("its first line is not " + std::string(kMotionTableHeader));
    std::vector<refine::FrameMotion> rows;
    while (!text.empty()) {
        refine::FrameMotion row;
        row.motion.about = frameCentre(size);
        if (!parseRow(takeLine(text), static_cast<int>(rows.size()), row))
            throw ToolError("line " + std::to_string(rows.size() + 2) + " is no row of frame " +
                            std::to_string(rows.size()));
        rows.push_back(row);
    }
    return rows;
}

std::vector<refine::FrameMotion> readMotionCsv(const std::filesystem::path& file, FrameSize size,
                                               int frames) {
    const std::string text = readTextFile(file);
    try {
        auto rows = parseMotionCsv(text, size);
        if (static_cast<int>(rows.size()) != frames)
            throw ToolError("it has " + std::to_string(rows.size()) + " frames, the record says " +
                            std::to_string(frames));
        return rows;
    } catch (const ToolError& error) {
        throw ToolError(file.string() + ": no motions of this sweep: " + error.what());
    }
}

}  // namespace orbitwalk::tool
