#pragma once

/// @file
/// Opens a motion record for a player: checks bytes of unknown origin, gives typed access, and says
/// which point of a frame each point of the output picture shows. Header only, with Geometry.h,
/// RecordCheck.h and RenderMatrix.h; needs neither the engine library nor a little-endian machine.

#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>

#include "orbitwalk/Geometry.h"
#include "orbitwalk/MetaData.h"
#include "orbitwalk/RecordCheck.h"
#include "orbitwalk/RenderMatrix.h"

namespace orbitwalk {

/// Frames begin to end - 1.
struct FrameRange {
    int begin = 0;
    int end = 0;
};

/// An opened record: checked and immutable. Copies share the record; const access from several
/// threads is safe. An index outside the count that a function names throws std::out_of_range.
class RecordReader {
  public:
    /// Checks and copies a record; the bytes are not kept. Throws only std::bad_alloc.
    static std::variant<RecordReader, RecordRefusal> open(std::span<const std::byte> bytes) {
        if (auto refusal = detail::checkSize(bytes.size()))
            return *std::move(refusal);
        auto record = detail::decode(bytes);
        if (auto refusal = detail::checkRecord(*record))
            return *std::move(refusal);
        return RecordReader(std::move(record));
    }

    int width() const { return mRecord->width; }
    int height() const { return mRecord->height; }
    CropRectangle crop() const {
        const auto& [x, y, width, height] = mRecord->cropParam;
        return {x, y, width, height};
    }

    int frameCount() const { return mRecord->numFrames; }
    /// startIndex to endIndex (inclusive in the record), limited to the frames there are. Empty
    /// when the start lies beyond the end.
    FrameRange range() const {
        const int end = std::min(mRecord->endIndex + 1, mRecord->numFrames);
        return {std::min(mRecord->startIndex, end), end};
    }
    /// A player shows the frame: it lies in the range and its flag is 1.
    bool isRendered(int frame) const {
        checkIndex(frame, frameCount());
        const FrameRange shown = range();
        return frame >= shown.begin && frame < shown.end && mRecord->renderFlag[frame] == 1;
    }
    RenderMatrix renderMatrix(int frame) const {
        checkIndex(frame, frameCount());
        return detail::isUnwritten(*mRecord, frame) ? RenderMatrix()
                                                    : RenderMatrix(mRecord->renderMat[frame]);
    }
    /// Pixels along the sweep from the first rendered frame; saturates at 2147.483647.
    double displacement(int frame) const {
        checkIndex(frame, frameCount());
        return mRecord->scaledInputTransform[frame] / 1e6;
    }

    /// Border frames show the first rendered frame again before the sweep, the farthest first, and
    /// the last one again after it.
    int leftBorderCount() const { return mRecord->leftBorderFrames; }
    int rightBorderCount() const { return mRecord->rightBorderFrames; }
    RenderMatrix leftBorder(int k) const {
        checkIndex(k, leftBorderCount());
        return RenderMatrix(mRecord->leftBorderMat[k]);
    }
    RenderMatrix rightBorder(int k) const {
        checkIndex(k, rightBorderCount());
        return RenderMatrix(mRecord->rightBorderMat[k]);
    }

    /// Degrees as in the record: 0, 90, 270 or 360 unless the caller of start gave another.
    int orientation() const { return mRecord->orientation; }
    /// An OBWDirection, 1 to 4.
    int direction() const { return mRecord->captureDirection; }
    /// The preview was mirrored: a player shows at each output point what belongs to mirrored().
    bool isFlipped() const { return mRecord->frontCameraFlipped == 1; }
    /// The output point that lies opposite in the crop rectangle.
    PicturePoint mirrored(PicturePoint output) const {
        const CropRectangle area = crop();
        return {2.0 * area.x + area.width - 1 - output.x, output.y};
    }

    /// The fields as written, in the host's byte order. Valid as long as a copy of this reader.
    const __kelOBWKDXMetaData& raw() const { return *mRecord; }

  private:
    explicit RecordReader(std::shared_ptr<const __kelOBWKDXMetaData> record)
        : mRecord(std::move(record)) {}

    static void checkIndex(int index, int count) {
        if (index < 0 || index >= count)
            throw std::out_of_range("index beyond the record's count");
    }

    std::shared_ptr<const __kelOBWKDXMetaData> mRecord;
};

}  // namespace orbitwalk
