#include "inspect/RecordFormats.h"

#include <algorithm>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <sstream>

#include "sweep/Sweep.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

MatrixEntry describe(int index, const RenderMatrix& matrix, const std::int32_t (&raw)[9]) {
    const PicturePoint origin = matrix.outputFromFrame({0, 0});
    // Adding zero takes the sign off a zero.
    MatrixEntry entry{index, origin.x + 0.0, origin.y + 0.0, matrix.angle() + 0.0, {}};
    std::ranges::copy(raw, entry.fixed.begin());
    return entry;
}

using Json = nlohmann::ordered_json;

Json asJson(const MatrixEntry& entry) {
    return {{"index", entry.index},
            {"dx", entry.dx},
            {"dy", entry.dy},
            {"angle", entry.angle},
            {"matrix", entry.fixed}};
}

Json asJson(const FrameEntry& frame) {
    Json json = asJson(frame.matrix);
    json["flag"] = frame.flag;
    json["rendered"] = frame.rendered;
    json["displacement"] = frame.displacement;
    return json;
}

template <typename Entry>
Json asJson(const std::vector<Entry>& entries) {
    Json json = Json::array();
    for (const Entry& entry : entries)
        json.push_back(asJson(entry));
    return json;
}

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

InspectedRecord openInspected(const std::filesystem::path& path, bool refined) {
    std::error_code cannotTell;
    if (std::filesystem::is_directory(path, cannotTell)) {
        Sweep sweep = readSweep(path, refined ? RecordBy::Refinement : RecordBy::Engine);
        return {std::move(sweep.record), isVertical(sweep.summary)};
    }
    if (refined)
        throw UsageError("--refined is of a capture: give its directory");
    return {readRecordFile(path), std::nullopt};
}

RecordEntries listEntries(const RecordReader& record) {
    const auto& raw = record.raw();
    RecordEntries entries;
    for (int k = 0; k < record.leftBorderCount(); ++k)
        entries.left.push_back(describe(k, record.leftBorder(k), raw.leftBorderMat[k]));
    for (int i = 0; i < record.frameCount(); ++i)
        entries.frames.push_back({describe(i, record.renderMatrix(i), raw.renderMat[i]),
                                  raw.renderFlag[i], record.isRendered(i), record.displacement(i)});
    for (int k = 0; k < record.rightBorderCount(); ++k)
        entries.right.push_back(describe(k, record.rightBorder(k), raw.rightBorderMat[k]));
    return entries;
}

std::string recordAsJson(const InspectedRecord& inspected) {
    const RecordReader& record = inspected.record;
    const auto& raw = record.raw();
    const CropRectangle crop = record.crop();
    const RecordEntries entries = listEntries(record);
    const Json json = {
        {"width", raw.width},
        {"height", raw.height},
        {"numFrames", raw.numFrames},
        {"startIndex", raw.startIndex},
        {"endIndex", raw.endIndex},
        {"algoType", raw.algoType},
        {"algoVersion", raw.algoVersion},
        {"orientation", raw.orientation},
        {"captureDirection", raw.captureDirection},
        {"vertical", inspected.vertical ? Json(*inspected.vertical) : Json(nullptr)},
        {"cameraType", raw.cameraType},
        {"frontCameraFlipped", raw.frontCameraFlipped},
        {"crop", {{"x", crop.x}, {"y", crop.y}, {"width", crop.width}, {"height", crop.height}}},
        {"leftBorder", asJson(entries.left)},
        {"frames", asJson(entries.frames)},
        {"rightBorder", asJson(entries.right)},
    };
    return json.dump() + "\n";
}

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
