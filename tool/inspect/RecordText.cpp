#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>

#include "inspect/RecordFormats.h"
#include "sweep/Degrees.h"
#include "sweep/RecordFacts.h"

namespace orbitwalk::tool {

namespace {

/// Pixels along the sweep that the record's 32 bits can hold; what lies beyond is written as this.
constexpr double kFarthest = 2147.483;

std::string directionText(const InspectedRecord& inspected) {
    if (inspected.vertical.value_or(false))
        return "vertical, which is not supported";
    return directionName(inspected.record.direction()) +
           (inspected.vertical ? "" : "; a record alone cannot tell a vertical sweep");
}

void writeHeader(std::ostream& out, const InspectedRecord& inspected,
                 const RecordEntries& entries) {
    const RecordReader& record = inspected.record;
    const auto& raw = record.raw();
    const CropRectangle crop = record.crop();
    const auto rendered = std::ranges::count_if(entries.frames, &FrameEntry::rendered);
    out << "frame        " << raw.width << "x" << raw.height << "\n"
        << "frames       " << raw.numFrames << ", range " << raw.startIndex << " to "
        << raw.endIndex << ", " << rendered << " rendered\n"
        << "orientation  " << raw.orientation << " (" << orientationName(raw.orientation) << ")\n"
        << "direction    " << raw.captureDirection << " (" << directionText(inspected) << ")\n"
        << "camera       " << raw.cameraType << " (" << cameraName(raw.cameraType) << "), preview "
        << (record.isFlipped() ? "flipped" : "not flipped") << "\n"
        << "algorithm    type " << raw.algoType << ", version " << raw.algoVersion << "\n"
        << std::fixed << std::setprecision(1)  //
        << "crop         " << crop.width << "x" << crop.height << " at " << crop.x << "," << crop.y
        << " (" << 100.0 * crop.width / raw.width << " % of the width, "
        << 100.0 * crop.height / raw.height << " % of the height)\n"
        << "border       " << raw.leftBorderFrames << " frames left, " << raw.rightBorderFrames
        << " right\n";
}

void writeMatrix(std::ostream& out, const MatrixEntry& entry, bool withFixed) {
    out << std::setprecision(3) << std::setw(10) << entry.dx << std::setw(10) << entry.dy
        << std::setw(10) << degrees(entry.angle);
    if (withFixed) {
        out << "  [";
        for (std::size_t i = 0; i < entry.fixed.size(); ++i)
            out << (i ? " " : "") << entry.fixed[i];
        out << "]";
    }
}

void writeBorder(std::ostream& out, const char* side, const std::vector<MatrixEntry>& entries,
                 bool withFixed) {
    for (const MatrixEntry& entry : entries) {
        out << std::setw(5) << side << std::setw(5) << entry.index << std::setw(24) << "";
        writeMatrix(out, entry, withFixed);
        out << "\n";
    }
}

}  // namespace

std::string recordAsText(const InspectedRecord& inspected, bool withFixed) {
    const RecordEntries entries = listEntries(inspected.record);
    std::ostringstream out;
    writeHeader(out, inspected, entries);
    out << "\n          flag  shown   sweep/px     dx/px     dy/px   angle/°"
        << (withFixed ? "  [matrix x 1000000]" : "") << "\n";
    writeBorder(out, "left", entries.left, withFixed);
    for (const FrameEntry& frame : entries.frames) {
        out << "frame" << std::setw(5) << frame.matrix.index << std::setw(4) << frame.flag
            << std::setw(7) << (frame.rendered ? "yes" : "no") << std::setprecision(3)
            << std::setw(13) << frame.displacement;
        writeMatrix(out, frame.matrix, withFixed);
        out << (std::abs(frame.displacement) >= kFarthest ? "  (saturated)\n" : "\n");
    }
    writeBorder(out, "right", entries.right, withFixed);
    return out.str();
}

}  // namespace orbitwalk::tool
