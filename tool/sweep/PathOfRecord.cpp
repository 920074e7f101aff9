#include "sweep/PathOfRecord.h"

#include <string>

#include "sweep/SmoothedPath.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

std::string textOf(const CropRectangle& crop) {
    return std::to_string(crop.width) + "x" + std::to_string(crop.height) + " at " +
           std::to_string(crop.x) + "," + std::to_string(crop.y);
}

}  // namespace

void requirePathOfRecord(std::span<const SweepRow> path, const RecordReader& record) {
    const auto& raw = record.raw();
    for (int i = 0; i < record.frameCount(); ++i)
        if (path[i].flag != raw.renderFlag[i])
            throw ToolError("the flag of frame " + std::to_string(i) + " is " +
                            std::to_string(path[i].flag) + ", the record says " +
                            std::to_string(raw.renderFlag[i]));
    const SmoothedPath smoothed =
        smoothedPath(path, raw.startIndex, raw.endIndex, record.width(), record.height());
    const CropRectangle crop{smoothed.minX, smoothed.minY, smoothed.maxX - smoothed.minX,
                             smoothed.maxY - smoothed.minY};
    if (crop != record.crop())
        throw ToolError("its path leads to the crop " + textOf(crop) + ", the record has " +
                        textOf(record.crop()));
}

}  // namespace orbitwalk::tool
