// What must hold for any bytes: opening refuses them with a text, or gives a record of which every
// accessor answers with finite values and every matrix maps there and back.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "orbitwalk/RecordReader.h"

namespace {

using namespace orbitwalk;

void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "record reader: %s\n", what);
    std::abort();
}

/// The looser the inverse is determined, the larger the frame coordinates it works on: the matrices
/// that just pass keep a hundredth of a pixel, those of a real record 1e-9.
void checkMatrix(const RenderMatrix& matrix, const RecordReader& record) {
    for (const double element : matrix.elements())
        require(std::isfinite(element), "an element is not finite");
    require(std::isfinite(matrix.angle()), "the angle is not finite");
    const double right = record.width() - 1;
    const double bottom = record.height() - 1;
    const PicturePoint points[] = {
        {0, 0}, {right, 0}, {0, bottom}, {right, bottom}, {right / 3, bottom / 7}};
    for (const PicturePoint point : points) {
        const PicturePoint frame = matrix.frameFromOutput(point);
        const PicturePoint back = matrix.outputFromFrame(frame);
        require(std::isfinite(frame.x) && std::isfinite(frame.y), "a frame point is not finite");
        require(std::hypot(back.x - point.x, back.y - point.y) < 0.01, "a point does not map back");
    }
}

void checkGeometry(const RecordReader& record) {
    const CropRectangle crop = record.crop();
    require(crop.x >= 0 && crop.y >= 0 && crop.width > 0 && crop.height > 0, "the crop is empty");
    require(crop.x + crop.width <= record.width() && crop.y + crop.height <= record.height(),
            "the crop leaves the frame");
    const double edge = crop.x;
    require(record.mirrored({edge, 0}).x == edge + crop.width - 1, "mirroring leaves the crop");
}

void checkFrames(const RecordReader& record) {
    const FrameRange range = record.range();
    require(0 <= range.begin && range.begin <= range.end && range.end <= record.frameCount() &&
                record.frameCount() <= OBW_MAX_FRAMES,
            "the range leaves the frames");
    for (int i = 0; i < record.frameCount(); ++i) {
        require(!record.isRendered(i) || (i >= range.begin && i < range.end),
                "a rendered frame lies outside the range");
        require(std::isfinite(record.displacement(i)), "a displacement is not finite");
        checkMatrix(record.renderMatrix(i), record);
    }
    for (int k = 0; k < record.leftBorderCount(); ++k)
        checkMatrix(record.leftBorder(k), record);
    for (int k = 0; k < record.rightBorderCount(); ++k)
        checkMatrix(record.rightBorder(k), record);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto opened = RecordReader::open(std::as_bytes(std::span(data, size)));
    if (const auto* refusal = std::get_if<RecordRefusal>(&opened)) {
        require(!refusal->text.empty(), "a refusal says nothing");
        return 0;
    }
    const auto& record = std::get<RecordReader>(opened);
    checkGeometry(record);
    checkFrames(record);
    return 0;
}
