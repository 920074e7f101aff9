#include <iomanip>
#include <sstream>

#include "inspect/RecordEntries.h"
#include "inspect/RecordFormats.h"

namespace orbitwalk::tool {

namespace {

/// Pixels to the record's resolution, radians finer than that.
void writeMatrix(std::ostream& out, const MatrixEntry& entry) {
    out << std::setprecision(6) << entry.dx << "," << entry.dy << "," << std::setprecision(9)
        << entry.angle;
    for (const std::int32_t element : entry.fixed)
        out << "," << element;
    out << "\n";
}

void writeBorder(std::ostream& out, const char* side, const std::vector<MatrixEntry>& entries) {
    for (const MatrixEntry& entry : entries) {
        out << side << "," << entry.index << ",,,,";
        writeMatrix(out, entry);
    }
}

}  // namespace

std::string recordAsCsv(const RecordReader& record) {
    const RecordEntries entries = listEntries(record);
    std::ostringstream out;
    out << std::fixed
        << "part,index,flag,rendered,displacement,dx,dy,angle,m0,m1,m2,m3,m4,m5,m6,m7,m8\n";
    writeBorder(out, "left", entries.left);
    for (const FrameEntry& frame : entries.frames) {
        out << "frame," << frame.matrix.index << "," << frame.flag << "," << frame.rendered << ","
            << std::setprecision(6) << frame.displacement << ",";
        writeMatrix(out, frame.matrix);
    }
    writeBorder(out, "right", entries.right);
    return out.str();
}

}  // namespace orbitwalk::tool
