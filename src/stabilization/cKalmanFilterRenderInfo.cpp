// What the stabiliser writes into the motion record, and what it logs while writing.
#include <algorithm>

#include "common/FixedPoint.h"
#include "common/Log.h"
#include "stabilization/BorderFrames.h"
#include "stabilization/RenderMatrix.h"
#include "stabilization/cKalmanFilterStabilization.h"

using namespace orbitwalk;

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE KALMAN_STABILIZATION";

}  // namespace

#define logSix(text, v) \
    logInfo(text "[%f %f %f %f %f %f]", (v)[0], (v)[1], (v)[2], (v)[3], (v)[4], (v)[5])

namespace {

void store(const FixedMatrix& matrix, std::int32_t (&entry)[9]) {
    std::copy(matrix.begin(), matrix.end(), entry);
}

/// Number of per-frame entries that the record says and can hold.
int frameEntries(const __kelOBWKDXMetaData& metaData) {
    return std::clamp(metaData.numFrames, 0, OBW_MAX_FRAMES);
}

bool isRendered(const __kelOBWKDXMetaData& metaData, int frame) {
    return metaData.renderFlag[frame] != 0 && metaData.startIndex <= frame &&
           frame <= metaData.endIndex;
}

/// Writes the matrix of a border frame at the next place of its area.
void addBorderFrame(std::int32_t (&area)[OBW_MAX_BORDER_FRAMES][9], std::int32_t& count, float x,
                    float y) {
    store(renderMatrix(rigidMatrix({x, y, 0})), area[count]);
    ++count;
}

void logLines(const BorderFit& fit) {
    const LineFit& line = fit.lineX;
    logInfo("getStabilizationInfo : sumkx = %f sumk = %f sumx = %f sumk2 = %f", line.sumKX,
            line.sumK, line.sumX, line.sumK2);
    logInfo("getStabilizationInfo : m_num_x = %f m_den_x = %f m_x = %f b_x = %f",
            line.slopeNumerator, line.slopeDenominator, line.slope, line.intercept);
    logSix("getStabilizationInfo : Extrapolated X: ", fit.extrapolatedX);
    logSix("getStabilizationInfo : Extrapolated Y: ", fit.extrapolatedY);
}

void logRemap(const Remap& remap) {
    logInfo("getStabilizationInfo : oStart = %f, oEnd = %f, nStart = %f, nEnd = %f", remap.oldStart,
            remap.oldEnd, remap.newStart, remap.newEnd);
}

void writeStartFrames(__kelOBWKDXMetaData& metaData, std::span<const Trajectory> smoothPath,
                      const BorderGeometry& geometry) {
    logInfo("getStabilizationInfo : FIRST FRAME");
    const BorderFit fit = fitStartFrames(smoothPath, geometry);
    logLines(fit);
    if (geometry.isPortrait()) {
        logInfo("getStabilizationInfo : PORTRAIT/REVERSE PORTRAIT");
        logSix("getStabilizationInfo : FIRST FRAME: X_New : ", fit.x);
        logRemap(fit.remap);
    } else if (geometry.isLandscape()) {
        logInfo("getStabilizationInfo : LANDSCAPE/REVERSE LANDSCAPE");
        logSix("getStabilizationInfo : FIRST FRAME: Y_New : ", fit.y);
        logRemap(fit.remap);
    }
    for (int i = 0; i < kBorderFrames; ++i) {
        addBorderFrame(metaData.leftBorderMat, metaData.leftBorderFrames, fit.x[i], fit.y[i]);
        logInfo("getStabilizationInfo : Start: Duplicate Frame %d: Val_X = %f ", i, fit.x[i]);
        logInfo("getStabilizationInfo : Start: Duplicate Frame %d: Val_Y = %f ", i, fit.y[i]);
    }
}

void writeEndFrames(__kelOBWKDXMetaData& metaData, std::span<const Trajectory> smoothPath,
                    std::span<const Trajectory> transforms, const BorderGeometry& geometry) {
    const int count = static_cast<int>(transforms.size());
    const Trajectory& last = transforms.back();
    logInfo("getStabilizationInfo : LAST FRAME");
    logInfo("getStabilizationInfo : Original Frame %d: Val_X = %f ", count, last.x);
    logInfo("getStabilizationInfo : Original Frame %d: Val_Y = %f ", count, last.y);
    const BorderFit fit = fitEndFrames(smoothPath, last, geometry);
    logLines(fit);
    if (geometry.isPortrait() || geometry.isLandscape()) {
        logRemap(fit.remap);
        logSix("getStabilizationInfo : LAST FRAME: X_New : ", fit.x);
        logSix("getStabilizationInfo : LAST FRAME: Y_New : ", fit.y);
    }
    for (int i = 0; i < kBorderFrames; ++i) {
        addBorderFrame(metaData.rightBorderMat, metaData.rightBorderFrames, fit.x[i], fit.y[i]);
        logInfo("getStabilizationInfo : End: Duplicate Frame %d: Val_X = %f ", i, fit.x[i]);
        logInfo("getStabilizationInfo : End: Duplicate Frame %d: Val_Y = %f ", i, fit.y[i]);
    }
}

}  // namespace

int cKalmanFilterStabilization::getStabilizationInfo(__kelOBWKDXMetaData* metaData,
                                                     bool identityForInvalid) {
    if (!__init || metaData == nullptr)
        return 2;
    metaData->matrixRows = 3;
    metaData->matrixCols = 3;
    if (__frameCount == 1) {
        __WriteIdentityMatrices(*metaData);
        return 0;
    }
    metaData->leftBorderFrames = 0;
    metaData->rightBorderFrames = 0;
    __WriteRenderMatrices(*metaData, identityForInvalid);
    if (__prevToCurrNewTransform.size() >= 2)
        __WriteBorderFrames(*metaData);
    else
        logInfo("getStabilizationInfo : Only 1 transformation available -- No additional frames");
    __WriteCrop(*metaData);
    return 0;
}

void cKalmanFilterStabilization::__WriteIdentityMatrices(__kelOBWKDXMetaData& metaData) const {
    logInfo("getStabilizationInfo : Entered only one valid Frame case");
    for (int i = 0; i < frameEntries(metaData); ++i) {
        logInfo("getStabilizationInfo : Setting Identity matrix for frame[%d] ", i);
        store(kIdentityMatrix, metaData.renderMat[i]);
    }
    const std::int32_t crop[4] = {0, 0, __width - 1, __height - 1};
    std::copy(crop, crop + 4, metaData.cropParam);
}

void cKalmanFilterStabilization::__WriteRenderMatrices(__kelOBWKDXMetaData& metaData,
                                                       bool identityForInvalid) const {
    const int last = frameEntries(metaData) - 1;
    int rendered = 0;
    int lastValidFrame = 0;
    for (int i = 0; i < last; ++i) {
        if (!isRendered(metaData, i)) {
            logInfo("getStabilizationInfo : Frame[%d] is Invalid", i);
            if (identityForInvalid) {
                store(kIdentityMatrix, metaData.renderMat[i]);
                continue;
            }
        }
        logInfo("getStabilizationInfo : Frame[%d] is Valid", i);
        const cv::Mat rigid = rigidMatrix(__RenderedTransform(rendered));
        const auto m = rigid.ptr<double>();
        logInfo(
            "getStabilizationInfo : Frame[%d] ValidFrm[%d] Trans [%f  %f  %f  %f  %f  %f  %f  %f  "
            "%f] ",
            i, rendered, m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8]);
        store(renderMatrix(rigid), metaData.renderMat[i]);
        ++rendered;
        lastValidFrame = i;
    }
    logInfo("getStabilizationInfo : lastValidFrameIndex = %d, numFrames = %d", lastValidFrame,
            metaData.numFrames);
    if (last > lastValidFrame)
        std::copy_n(metaData.renderMat[lastValidFrame], 9, metaData.renderMat[last]);
}

Trajectory cKalmanFilterStabilization::__RenderedTransform(int v) const {
    const int count = static_cast<int>(__prevToCurrNewTransform.size());
    if (v < count) {
        logInfo("getStabilizationInfo : RenderCnt  %d and SmoothTransformSize = %d ", v, count);
        return __prevToCurrNewTransform[v];
    }
    logInfo(
        "getStabilizationInfo : Last Valid Frame transformation copied from previous valid frame ");
    return count > 0 ? __prevToCurrNewTransform.back() : Trajectory{};
}

void cKalmanFilterStabilization::__WriteBorderFrames(__kelOBWKDXMetaData& metaData) const {
    __LogMargins(metaData);
    const BorderGeometry geometry{{metaData.width, metaData.height},
                                  {__minX, __maxX, __minY, __maxY},
                                  metaData.orientation,
                                  metaData.captureDirection,
                                  metaData.frontCameraFlipped};
    writeStartFrames(metaData, __smoothTrajectory, geometry);
    writeEndFrames(metaData, __smoothTrajectory, __prevToCurrNewTransform, geometry);
}

void cKalmanFilterStabilization::__LogMargins(const __kelOBWKDXMetaData& metaData) const {
    const int right = truncateToInt32(static_cast<double>(metaData.width) - __maxX);
    const int bottom = truncateToInt32(static_cast<double>(metaData.height) - __maxY);
    logInfo("getStabilizationInfo : Extrapolation using angles: DISABLED");
    logInfo("getStabilizationInfo : X dir: MIN(%d, %d) = %f ", __minX, right,
            static_cast<float>(std::min(__minX, right)));
    logInfo("getStabilizationInfo : Y dir: MIN(%d, %d) = %f ", __minY, bottom,
            static_cast<float>(std::min(__minY, bottom)));
    logInfo("getStabilizationInfo : Capture Direction : %d ", metaData.captureDirection);
    logInfo("getStabilizationInfo : Orientation : %d ", metaData.orientation);
    logInfo("getStabilizationInfo : Flip : %d ", metaData.frontCameraFlipped);
    const Trajectory& first = __prevToCurrNewTransform.front();
    logInfo("getStabilizationInfo : Original Frame %d: Val_X = %f ", 0, first.x);
    logInfo("getStabilizationInfo : Original Frame %d: Val_Y = %f ", 0, first.y);
}

void cKalmanFilterStabilization::__WriteCrop(__kelOBWKDXMetaData& metaData) const {
    const std::int32_t crop[4] = {__minX, __minY, __maxX - __minX, __maxY - __minY};
    std::copy(crop, crop + 4, metaData.cropParam);
    logInfo("getStabilizationInfo : __crossOverPoint = %d ", __crossOverPoint);
    logInfo("getStabilizationInfo crop smoothing boundaries %d %d %d %d", __minX, __maxX, __minY,
            __maxY);
    logInfo("getStabilizationInfo crop smoothing params %d %d %d %d", crop[0], crop[1], crop[2],
            crop[3]);
}
