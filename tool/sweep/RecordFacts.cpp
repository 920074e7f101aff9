#include "sweep/RecordFacts.h"

#include <algorithm>
#include <cstdint>

namespace orbitwalk::tool {

namespace {

/// The Gaussian filter needs two points, which follow the reference frame.
constexpr int kFewestFrames = 3;

bool isUncorrected(const __kelOBWKDXMetaData& record) {
    constexpr std::int32_t identity[9] = {1000000, 0, 0, 0, 1000000, 0, 0, 0, 1000000};
    const auto& crop = record.cropParam;
    return crop[0] == 0 && crop[1] == 0 && crop[2] == record.width - 1 &&
           crop[3] == record.height - 1 &&
           std::all_of(record.renderMat, record.renderMat + record.numFrames,
                       [&](const auto& matrix) { return std::ranges::equal(matrix, identity); });
}

}  // namespace

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

int renderedFrames(const __kelOBWKDXMetaData& record) {
    int rendered = 0;
    for (int i = record.startIndex; i < std::min(record.endIndex + 1, record.numFrames); ++i)
        rendered += record.renderFlag[i] == 1;
    return rendered;
}

Smoothing smoothingOf(const __kelOBWKDXMetaData& record) {
    if (renderedFrames(record) < kFewestFrames)
        return Smoothing::TooFewFrames;
    return isUncorrected(record) ? Smoothing::FellBack : Smoothing::Smoothed;
}

double viewKeptBy(const RecordReader& record) {
    const CropRectangle crop = record.crop();
    return static_cast<double>(crop.width) * crop.height / record.width() / record.height();
}

const char* wordsOf(Smoothing smoothing) {
    switch (smoothing) {
        case Smoothing::FellBack:
            return "none: no smoothing kept enough of the picture";
        case Smoothing::TooFewFrames:
            return "none: fewer than three frames are rendered, too few to smooth";
        default:
            return "smoothed";
    }
}

const char* keyOf(Smoothing smoothing) {
    return smoothing == Smoothing::FellBack       ? "fellBack"
           : smoothing == Smoothing::TooFewFrames ? "tooFewFrames"
                                                  : "smoothed";
}

const char* keyOf(OBWDirection direction) {
    return direction == OBW_DIRECTION_LEFT2RIGHT   ? "left2right"
           : direction == OBW_DIRECTION_RIGHT2LEFT ? "right2left"
                                                   : "vertical";
}

}  // namespace orbitwalk::tool
