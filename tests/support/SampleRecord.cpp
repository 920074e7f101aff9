#include "support/SampleRecord.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

constexpr int frames = 12;
constexpr int borderFrames = 6;

/// What the engine writes for the correction (tx, ty, angle), up to the last digit.
void writeMatrix(std::int32_t (&raw)[9], double tx, double ty, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double elements[9] = {c, -s, 0, s, c, 0, -(c * tx + s * ty), s * tx - c * ty, 1};
    std::ranges::transform(elements, raw,
                           [](double e) { return static_cast<std::int32_t>(e * 1e6); });
}

}  // namespace

__kelOBWKDXMetaData sampleRecord() {
    __kelOBWKDXMetaData record{};
    record.width = 1280;
    record.height = 720;
    record.numFrames = frames;
    record.startIndex = 2;
    record.endIndex = 9;
    record.orientation = 270;
    record.captureDirection = 2;
    record.cameraType = 1;
    record.maxFrames = OBW_MAX_FRAMES;
    record.viewAngleMaxFrames = OBW_MAX_BORDER_FRAMES;
    record.cropParam[0] = 40;
    record.cropParam[1] = 22;
    record.cropParam[2] = 1200;
    record.cropParam[3] = 675;
    record.matrixRows = record.matrixCols = 3;
    for (int i = 0; i < frames; ++i) {
        const bool rendered = i >= record.startIndex && i <= record.endIndex && i != 5;
        const double size = rendered ? 1 : 0;
        writeMatrix(record.renderMat[i], size * (3.5 * i - 20), size * (8 - i), size * 0.002 * i);
        record.renderFlag[i] = i != 5;
        record.scaledInputTransform[i] = rendered ? (i - record.startIndex) * 25'500'000 : 0;
    }
    // The last entry always repeats the last rendered frame's matrix.
    std::ranges::copy(record.renderMat[record.endIndex], record.renderMat[frames - 1]);
    record.leftBorderFrames = record.rightBorderFrames = borderFrames;
    for (int k = 0; k < borderFrames; ++k) {
        writeMatrix(record.leftBorderMat[k], 38 - 5.0 * k, 2, 0);
        writeMatrix(record.rightBorderMat[k], -10 - 5.0 * k, -1, 0);
    }
    return record;
}

std::vector<std::byte> recordBytes(const __kelOBWKDXMetaData& record) {
    std::vector<std::byte> bytes;
    for (std::size_t offset = 0; offset < sizeof record; offset += 4) {
        std::uint32_t word;
        std::memcpy(&word, reinterpret_cast<const char*>(&record) + offset, sizeof word);
        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<std::byte>(word >> shift & 0xff));
    }
    return bytes;
}
