#include "inspect/RecordEntries.h"

#include <algorithm>
#include <filesystem>

#include "inspect/RecordFormats.h"
#include "sweep/Sweep.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

MatrixEntry describe(int index, const RenderMatrix& matrix, const std::int32_t (&raw)[9]) {
    const PicturePoint origin = matrix.outputFromFrame({0, 0});
    // Adding zero takes the sign off a zero.
    MatrixEntry entry{index, origin.x + 0.0, origin.y + 0.0, matrix.angle() + 0.0, {}};
    std::ranges::copy(raw, entry.fixed.begin());
    return entry;
}

}  // namespace

InspectedRecord openInspected(const std::filesystem::path& path, bool refined) {
    std::error_code cannotTell;
    if (std::filesystem::is_directory(path, cannotTell)) {
        Sweep sweep = readSweep(path, refined ? RecordBy::Refinement : RecordBy::Engine);
        return {std::move(sweep.record), isVertical(sweep.summary)};
    }
    if (refined)
        throw UsageError("--refined is of a capture: give its directory");
    return {readRecordFile(path), std::nullopt};
}

RecordEntries listEntries(const RecordReader& record) {
    const auto& raw = record.raw();
    RecordEntries entries;
    for (int k = 0; k < record.leftBorderCount(); ++k)
        entries.left.push_back(describe(k, record.leftBorder(k), raw.leftBorderMat[k]));
    for (int i = 0; i < record.frameCount(); ++i)
        entries.frames.push_back({describe(i, record.renderMatrix(i), raw.renderMat[i]),
                                  raw.renderFlag[i], record.isRendered(i), record.displacement(i)});
    for (int k = 0; k < record.rightBorderCount(); ++k)
        entries.right.push_back(describe(k, record.rightBorder(k), raw.rightBorderMat[k]));
    return entries;
}

}  // namespace orbitwalk::tool
