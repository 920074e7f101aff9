#pragma once

/// @file
/// Decodes the bytes of a motion record and says what is wrong with them. Every record that the
/// engine can write passes; what passes can be played without a further check.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "orbitwalk/MetaData.h"
#include "orbitwalk/RenderMatrix.h"

namespace orbitwalk {

enum class RecordFault {
    Size,            ///< Not OBW_METADATA_SIZE bytes.
    FrameSize,       ///< No frame that the engine takes.
    Capacity,        ///< maxFrames or viewAngleMaxFrames differs from this format's.
    MatrixShape,     ///< Matrices are not 3x3.
    FrameCount,      ///< numFrames outside 0 to 1000.
    Range,           ///< startIndex or endIndex negative, or endIndex beyond numFrames.
    BorderCount,     ///< Border frames outside 0 to 10.
    Code,            ///< An unknown direction or flip, or a version that is no number.
    Crop,            ///< Empty, or reaches out of the frame.
    MatrixForm,      ///< Third column is not (0, 0, 1).
    MatrixSingular,  ///< The fixed-point elements do not determine an inverse.
};

/// Why bytes were refused: for programs, and as half a sentence for people ("has 12 bytes, ...").
struct RecordRefusal {
    RecordFault fault;
    std::string text;
};

namespace detail {

using Refusal = std::optional<RecordRefusal>;

inline Refusal refuse(RecordFault fault, std::string text) {
    return RecordRefusal{fault, std::move(text)};
}

inline bool isWithin(std::int64_t value, std::int64_t least, std::int64_t most) {
    return value >= least && value <= most;
}

inline Refusal checkSize(std::size_t size) {
    if (size == OBW_METADATA_SIZE)
        return {};
    return refuse(RecordFault::Size,
                  size > OBW_METADATA_SIZE
                      ? "has more than the 52808 bytes of a record"
                      : "has " + std::to_string(size) + " bytes, a record has 52808");
}

/// @param bytes  OBW_METADATA_SIZE of them. Word by word, so that the order of the host's bytes
/// does not matter.
inline std::shared_ptr<const __kelOBWKDXMetaData> decode(std::span<const std::byte> bytes) {
    auto record = std::make_shared<__kelOBWKDXMetaData>();
    auto* const target = reinterpret_cast<std::byte*>(record.get());
    for (std::size_t offset = 0; offset < OBW_METADATA_SIZE; offset += 4) {
        const std::byte* const at = bytes.data() + offset;
        std::uint32_t word = 0;
        for (int i = 3; i >= 0; --i)
            word = word << 8 | std::to_integer<std::uint32_t>(at[i]);
        std::memcpy(target + offset, &word, sizeof word);
    }
    return record;
}

/// The limits are those of the engine's start: an intermediate of three bytes a pixel and 16.16
/// steps fit 32 bits, and the picture can be reduced.
inline Refusal checkFrameSize(const __kelOBWKDXMetaData& r) {
    if (isWithin(r.width, 4, 32767) && isWithin(r.height, 4, 32767) &&
        std::int64_t{r.width} * r.height * 3 <= std::numeric_limits<std::int32_t>::max())
        return {};
    return refuse(RecordFault::FrameSize, "has an implausible frame size, " +
                                              std::to_string(r.width) + "x" +
                                              std::to_string(r.height));
}

inline Refusal checkLayout(const __kelOBWKDXMetaData& r) {
    if (r.maxFrames != OBW_MAX_FRAMES || r.viewAngleMaxFrames != OBW_MAX_BORDER_FRAMES)
        return refuse(RecordFault::Capacity,
                      "has room for " + std::to_string(r.maxFrames) + " frames and " +
                          std::to_string(r.viewAngleMaxFrames) + " border frames, not 1000 and 10");
    if (r.matrixRows != 3 || r.matrixCols != 3)
        return refuse(RecordFault::MatrixShape, "has matrices of " + std::to_string(r.matrixRows) +
                                                    "x" + std::to_string(r.matrixCols) +
                                                    ", not 3x3");
    return {};
}

/// A start beyond the end is what the engine stores when the caller of stop asked for it; it
/// selects no frame.
inline Refusal checkCounts(const __kelOBWKDXMetaData& r) {
    if (!isWithin(r.numFrames, 0, OBW_MAX_FRAMES))
        return refuse(RecordFault::FrameCount,
                      "counts " + std::to_string(r.numFrames) + " frames, not 0 to 1000");
    if (r.startIndex < 0 || !isWithin(r.endIndex, 0, r.numFrames))
        return refuse(RecordFault::Range, "renders frames " + std::to_string(r.startIndex) +
                                              " to " + std::to_string(r.endIndex) + " of " +
                                              std::to_string(r.numFrames));
    if (!isWithin(r.leftBorderFrames, 0, OBW_MAX_BORDER_FRAMES) ||
        !isWithin(r.rightBorderFrames, 0, OBW_MAX_BORDER_FRAMES))
        return refuse(RecordFault::BorderCount, "counts " + std::to_string(r.leftBorderFrames) +
                                                    " and " + std::to_string(r.rightBorderFrames) +
                                                    " border frames, not 0 to 10");
    return {};
}

/// Orientations are the caller's and pass whatever they are.
inline Refusal checkCodes(const __kelOBWKDXMetaData& r) {
    if (!isWithin(r.captureDirection, 1, 4))
        return refuse(RecordFault::Code, "has capture direction " +
                                             std::to_string(r.captureDirection) + ", not 1 to 4");
    if (!isWithin(r.frontCameraFlipped, 0, 1))
        return refuse(RecordFault::Code,
                      "has flip " + std::to_string(r.frontCameraFlipped) + ", not 0 or 1");
    if (!std::isfinite(r.algoVersion))
        return refuse(RecordFault::Code, "has an algorithm version that is not a finite number");
    return {};
}

inline Refusal checkCrop(const __kelOBWKDXMetaData& r) {
    const auto& [x, y, width, height] = r.cropParam;
    if (isWithin(x, 0, r.width - 1) && isWithin(y, 0, r.height - 1) &&
        isWithin(width, 1, r.width - x) && isWithin(height, 1, r.height - y))
        return {};
    return refuse(RecordFault::Crop, "has crop " + std::to_string(width) + "x" +
                                         std::to_string(height) + " at " + std::to_string(x) + "," +
                                         std::to_string(y) + " in a frame of " +
                                         std::to_string(r.width) + "x" + std::to_string(r.height));
}

/// Truncation may take one unit from each element of the third column. Every element of the linear
/// part is known to one unit, so the determinant to the sum of their magnitudes units: below a
/// hundred times that, the inverse would be off by more than a hundredth.
inline Refusal checkMatrix(const std::int32_t (&raw)[9], const char* name, int index) {
    const auto where = [&] { return std::string(name) + " " + std::to_string(index); };
    if (!isWithin(raw[2], -1, 1) || !isWithin(raw[5], -1, 1) || !isWithin(raw[8], 999999, 1000001))
        return refuse(RecordFault::MatrixForm,
                      "has no third column 0, 0, 1 in the matrix of " + where());
    const RenderMatrix matrix(raw);
    double magnitude = 0;
    for (const int i : {0, 1, 3, 4})
        magnitude += std::abs(matrix.elements()[i]);
    if (std::abs(matrix.determinant()) <= 100 * 1e-6 * magnitude)
        return refuse(RecordFault::MatrixSingular, "has a singular matrix for " + where());
    return {};
}

/// The engine leaves the matrix of a capture of a single frame unwritten, all zero.
inline bool isUnwritten(const __kelOBWKDXMetaData& r, int frame) {
    const auto isZero = [](std::int32_t element) { return element == 0; };
    return r.numFrames == 1 &&
           std::all_of(std::begin(r.renderMat[frame]), std::end(r.renderMat[frame]), isZero);
}

inline Refusal checkMatrices(const __kelOBWKDXMetaData& r) {
    Refusal refusal;
    for (int i = 0; i < r.numFrames && !refusal; ++i)
        if (!isUnwritten(r, i))
            refusal = checkMatrix(r.renderMat[i], "frame", i);
    for (int k = 0; k < r.leftBorderFrames && !refusal; ++k)
        refusal = checkMatrix(r.leftBorderMat[k], "left border frame", k);
    for (int k = 0; k < r.rightBorderFrames && !refusal; ++k)
        refusal = checkMatrix(r.rightBorderMat[k], "right border frame", k);
    return refusal;
}

inline Refusal checkRecord(const __kelOBWKDXMetaData& record) {
    for (const auto step :
         {checkFrameSize, checkLayout, checkCounts, checkCodes, checkCrop, checkMatrices})
        if (Refusal refusal = step(record))
            return refusal;
    return {};
}

}  // namespace detail

}  // namespace orbitwalk
