#include "inspect/RecordEntries.h"

#include <algorithm>

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

std::string orientationName(int degrees) {
    switch (degrees) {
        case 0:
            return "landscape";
        case 90:
            return "portrait";
        case 270:
            return "reverse landscape";
        case 360:
            return "reverse portrait";
        default:
            return "unknown";
    }
}

std::string directionName(int direction) {
    constexpr const char* names[] = {"unknown", "left to right", "right to left", "top to bottom",
                                     "bottom to top"};
    return names[direction >= 1 && direction <= 4 ? direction : 0];
}

std::string cameraName(int type) {
    return type == 1 ? "front" : type == 2 ? "rear" : "unknown";
}

}  // namespace orbitwalk::tool
