#include "engine/MotionRecord.h"

#include <algorithm>

#include "common/FixedPoint.h"
#include "common/Log.h"
#include "engine/StartParameters.h"

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";
constexpr int kMatrixWords = 9;
constexpr std::int32_t kFrontCamera = 1;

void printMatrices(const std::int32_t (*matrices)[kMatrixWords], int count) {
    for (int i = 0; i < count; ++i) {
        const std::int32_t* const m = matrices[i];
        logInfo("printOBWMetaInfo : renderMat[%d] = [%d,%d,%d,%d,%d,%d,%d,%d,%d]", i, m[0], m[1],
                m[2], m[3], m[4], m[5], m[6], m[7], m[8]);
    }
}

void printHeader(const __kelOBWKDXMetaData& record) {
    logInfo("printOBWMetaInfo : w:h = %dx%d", record.width, record.height);
    logInfo("printOBWMetaInfo : frames = %d, %d ~ %d", record.numFrames, record.startIndex,
            record.endIndex);
    logInfo(
        "printOBWMetaInfo : algoType=%d, algoVersion=%f, orientation=%d, captureDirection=%d, "
        "cameraType=%d",
        record.algoType, static_cast<double>(record.algoVersion), record.orientation,
        record.captureDirection, record.cameraType);
    logInfo(
        "printOBWMetaInfo : ######### orientation/captureDirection/cameraType value meanings  "
        "##########");
    logInfo(
        "printOBWMetaInfo : captureDirection --- 1 : Left to Right, 2 : Right to Left, 3 : Top to "
        "Bottom, 4 : Bottom to Top");
    logInfo(
        "printOBWMetaInfo : orientation : 0->Landscape, 90->Portrait, 270->Reverse Landscape, "
        "360->Reverse Portrait");
    logInfo("printOBWMetaInfo : cameraType :  1 : Front Camera, 2 : Rear Camera");
    logInfo("printOBWMetaInfo : crop param : %dx%d,  %dx%d, matrix = %dx%d", record.cropParam[0],
            record.cropParam[1], record.cropParam[2], record.cropParam[3], record.matrixRows,
            record.matrixCols);
    logInfo("printOBWMetaInfo : w:h = %dx%d", record.width, record.height);
    logInfo("printOBWMetaInfo : frontCameraFlipped = %d", record.frontCameraFlipped);
    logInfo("printOBWMetaInfo : max frames = %d", record.maxFrames);
}

int heldFrames(const __kelOBWKDXMetaData& record) {
    return std::clamp(record.numFrames, 0, OBW_MAX_FRAMES);
}

int heldBorderFrames(std::int32_t count) {
    return std::clamp(count, 0, OBW_MAX_BORDER_FRAMES);
}

/// Column 0 of a matrix that begins at `matrix`, as far as its words reach.
void negateFirstColumn(std::int32_t* matrix, std::int64_t rows, std::int64_t columns) {
    for (std::int64_t row = 0; row < std::min<std::int64_t>(rows, kMatrixWords); ++row) {
        const std::int64_t word = row * columns;
        if (word < 0 || word >= kMatrixWords)
            return;
        // In unsigned arithmetic, since the smallest value has no negative.
        matrix[word] = static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(matrix[word]));
    }
}

}  // namespace

namespace orbitwalk {

std::unique_ptr<__kelOBWKDXMetaData> beginRecord(const _OBW_ENGINE_INIT_PARAM& param) {
    auto record = std::make_unique<__kelOBWKDXMetaData>();
    record->width = param.imageWidth;
    record->height = param.imageHeight;
    record->cameraType = kFrontCamera;
    record->frontCameraFlipped = 0;
    record->captureDirection = OBW_DIRECTION_LEFT2RIGHT;
    record->maxFrames = OBW_MAX_FRAMES;
    record->orientation = recordedOrientation(param.orientation);
    logInfo("kelOBWEngine::start :  Orientation changed from %d to %d ", param.orientation,
            record->orientation);
    logInfo("kelOBWEngine::start :  Orientation = %d FrontCamFlipped = %d ", record->orientation,
            frontCamFlipped(param));
    return record;
}

void insertTransformInfoInOBWMetaData(__kelOBWKDXMetaData& record, std::int32_t orientation,
                                      double dx, double dy, int frameIndex) {
    const std::int32_t direction = record.captureDirection;
    const bool alongX = sweepAxis(orientation, direction) == SweepAxis::x;
    const double displacement = alongX ? dx : dy;
    const std::int32_t scaled = toFixedPoint(displacement);
    record.scaledInputTransform[frameIndex] = scaled;
    logInfo(
        "insertTransformInfoInOBWMetaData : store %s =%f, %d, orientation=%d, cameraDirection=%d",
        alongX ? "dx" : "dy", displacement, scaled, orientation, direction);
}

void fillHeader(__kelOBWKDXMetaData& record, const _OBW_ENGINE_INIT_PARAM& param,
                std::int32_t numFrames, RenderRange range, std::int32_t orientation) {
    record.numFrames = numFrames;
    if (!isValidRange(range, numFrames)) {
        logInfo("Start and End Indices are invalid [%d %d]. Setting to defaults ", range.start,
                range.end);
        range = {0, numFrames};
    }
    record.startIndex = range.start;
    record.endIndex = range.end;
    logInfo(
        "kelOBWEngine::doSmoothingAndFillMetadata : StartIndx = %d EndIndx = %d NumFrames = %d ",
        record.startIndex, record.endIndex, record.numFrames);
    record.frontCameraFlipped = frontCamFlipped(param);
    logInfo("kelOBWEngine::doSmoothingAndFillMetadata :  flipped=%d, orientation=%d ",
            record.frontCameraFlipped, orientation);
    if (record.frontCameraFlipped != 0)
        logInfo(
            "kelOBWEngine::doSmoothingAndFillMetadata : flip matrix for front camera flip mode");
}

}  // namespace orbitwalk

void printOBWMetaInfo(__kelOBWKDXMetaData* record) {
    if (record == nullptr)
        return;
    printHeader(*record);
    printMatrices(record->renderMat, heldFrames(*record));
    for (int i = 0; i < heldFrames(*record); ++i)
        logInfo("printOBWMetaInfo : scaled input Trasform[%d] = %d", i,
                record->scaledInputTransform[i]);
    logInfo("printOBWMetaInfo : view angle fitting : max frames = %d", record->viewAngleMaxFrames);
    logInfo(
        "printOBWMetaInfo : view angle fitting : left border frames = %d, right border frames = %d",
        record->leftBorderFrames, record->rightBorderFrames);
    printMatrices(record->leftBorderMat, heldBorderFrames(record->leftBorderFrames));
    printMatrices(record->rightBorderMat, heldBorderFrames(record->rightBorderFrames));
}

void flipWarpMatrix(__kelOBWKDXMetaData* record) {
    if (record == nullptr)
        return;
    for (int i = 0; i < heldFrames(*record); ++i)
        negateFirstColumn(record->renderMat[i], record->matrixRows, record->matrixCols);
    logInfo("flipWarpMatrix : DONE.........");
}
