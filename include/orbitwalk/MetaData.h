#pragma once

/// @file
/// The motion metadata record: what a capture hands to a player.
///
/// The record is a file format. All fields are little-endian 32-bit words; every offset below is
/// fixed.
///
///      offset  size   field                    written by
///      0       4      width                    start
///      4       4      height                   start
///      8       4      numFrames                post-processing
///      12      4      startIndex               post-processing
///      16      4      endIndex                 post-processing
///      20      4      algoType                 (0)
///      24      4      algoVersion, float       (0.0)
///      28      4      orientation              start
///      32      4      captureDirection         start, stop
///      36      4      cameraType               start
///      40      4      frontCameraFlipped       start, post-processing
///      44      4      maxFrames                start
///      48      16     cropParam[4]             stabiliser: x, y, width, height
///      64      4      matrixRows               stabiliser (3)
///      68      4      matrixCols               stabiliser (3)
///      72      36000  renderMat[1000][9]       stabiliser
///      36072   8000   reserved                 (0)
///      44072   4000   scaledInputTransform     stop
///      48072   4000   renderFlag[1000]         stop
///      52072   4      viewAngleMaxFrames       post-processing (10)
///      52076   4      leftBorderFrames         stabiliser
///      52080   360    leftBorderMat[10][9]     stabiliser
///      52440   4      rightBorderFrames        stabiliser
///      52444   360    rightBorderMat[10][9]    stabiliser
///      52804   4      reserved                 (0)
///
/// Only the first numFrames entries of the per-frame arrays and the first leftBorderFrames and
/// rightBorderFrames border matrices carry meaning; the rest is zero.
///
/// A matrix element is the double value times 1000000, truncated toward zero. Matrices are
/// row-major and act on row vectors of output-picture coordinates: [x y 1] * M, pixels of the
/// full-size frame, y down; a translation stands in the third row (elements 6 and 7 of 0..8),
/// elements 2 and 5 are 0.

#include <stddef.h>
#include <stdint.h>

#include "orbitwalk/Export.h"

#define OBW_METADATA_SIZE 52808
#define OBW_MAX_FRAMES 1000
#define OBW_MAX_BORDER_FRAMES 10

#ifdef __cplusplus
extern "C" {
#endif

struct __kelOBWKDXMetaData {
    int32_t width;        ///< Frame width in pixels.
    int32_t height;       ///< Frame height in pixels.
    int32_t numFrames;    ///< Number of encoded frames that stop was told of.
    int32_t startIndex;   ///< First frame of the range to render.
    int32_t endIndex;     ///< Last frame of the range to render, inclusive.
    int32_t algoType;     ///< Always 0.
    float algoVersion;    ///< Always 0.0.
    int32_t orientation;  ///< 0 landscape, 90 portrait, 270 reverse landscape, 360 reverse
                          ///< portrait. Start stores the caller's value with 90 and 270 swapped.
    int32_t captureDirection;              ///< An OBWDirection; 1 or 2 after stop.
    int32_t cameraType;                    ///< 1 front, 2 rear; always 1.
    int32_t frontCameraFlipped;            ///< 1 when the front camera's preview is mirrored.
    int32_t maxFrames;                     ///< Capacity of the per-frame arrays, 1000.
    int32_t cropParam[4];                  ///< x, y, width, height in pixels of the frame.
    int32_t matrixRows;                    ///< 3.
    int32_t matrixCols;                    ///< 3.
    int32_t renderMat[OBW_MAX_FRAMES][9];  ///< Render matrix of each frame, times 1000000.
    int32_t reserved[2000];                ///< Zero.
    int32_t scaledInputTransform[OBW_MAX_FRAMES];  ///< Displacement along the sweep relative to the
                                                   ///< first valid frame, pixels times 1000000,
                                                   ///< saturated.
    int32_t renderFlag[OBW_MAX_FRAMES];  ///< The caller's flags; 1 = the frame is rendered.
    int32_t viewAngleMaxFrames;          ///< Capacity of each border array, 10.
    int32_t leftBorderFrames;            ///< Extra frames before the sweep, 0 to 10.
    int32_t leftBorderMat[OBW_MAX_BORDER_FRAMES][9];
    int32_t rightBorderFrames;  ///< Extra frames after the sweep, 0 to 10.
    int32_t rightBorderMat[OBW_MAX_BORDER_FRAMES][9];
    int32_t reserved2;  ///< Zero.
};

/// Writes the record to the log, at info priority: header, numFrames matrices and displacements,
/// border matrices. Counts beyond the arrays' capacity are printed as they are, and only as many
/// entries as the arrays hold. A null record is ignored.
OBW_API void printOBWMetaInfo(struct __kelOBWKDXMetaData* record);

/// Mirrors the render matrix of each of the numFrames frames horizontally, in place: column 0 is
/// negated. Border matrices are left alone; calling it twice restores the record. Sizes and counts
/// beyond the arrays' capacity are limited to it. A null record is ignored.
OBW_API void flipWarpMatrix(struct __kelOBWKDXMetaData* record);

#ifdef __cplusplus
}

#define OBW_ASSERT_OFFSET(field, offset) \
    static_assert(offsetof(__kelOBWKDXMetaData, field) == (offset))
#else
#define OBW_ASSERT_OFFSET(field, offset) \
    _Static_assert(offsetof(struct __kelOBWKDXMetaData, field) == (offset), #field)
#endif

OBW_ASSERT_OFFSET(width, 0);
OBW_ASSERT_OFFSET(height, 4);
OBW_ASSERT_OFFSET(numFrames, 8);
OBW_ASSERT_OFFSET(startIndex, 12);
OBW_ASSERT_OFFSET(endIndex, 16);
OBW_ASSERT_OFFSET(algoType, 20);
OBW_ASSERT_OFFSET(algoVersion, 24);
OBW_ASSERT_OFFSET(orientation, 28);
OBW_ASSERT_OFFSET(captureDirection, 32);
OBW_ASSERT_OFFSET(cameraType, 36);
OBW_ASSERT_OFFSET(frontCameraFlipped, 40);
OBW_ASSERT_OFFSET(maxFrames, 44);
OBW_ASSERT_OFFSET(cropParam, 48);
OBW_ASSERT_OFFSET(matrixRows, 64);
OBW_ASSERT_OFFSET(matrixCols, 68);
OBW_ASSERT_OFFSET(renderMat, 72);
OBW_ASSERT_OFFSET(reserved, 36072);
OBW_ASSERT_OFFSET(scaledInputTransform, 44072);
OBW_ASSERT_OFFSET(renderFlag, 48072);
OBW_ASSERT_OFFSET(viewAngleMaxFrames, 52072);
OBW_ASSERT_OFFSET(leftBorderFrames, 52076);
OBW_ASSERT_OFFSET(leftBorderMat, 52080);
OBW_ASSERT_OFFSET(rightBorderFrames, 52440);
OBW_ASSERT_OFFSET(rightBorderMat, 52444);
OBW_ASSERT_OFFSET(reserved2, 52804);
#undef OBW_ASSERT_OFFSET

#ifdef __cplusplus
static_assert(sizeof(__kelOBWKDXMetaData) == OBW_METADATA_SIZE);
#else
_Static_assert(sizeof(struct __kelOBWKDXMetaData) == OBW_METADATA_SIZE, "record size");
#endif
