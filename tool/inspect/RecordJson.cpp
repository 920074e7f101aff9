#include <nlohmann/json.hpp>

#include "inspect/RecordEntries.h"
#include "inspect/RecordFormats.h"

namespace orbitwalk::tool {

namespace {

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

}  // namespace

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

}  // namespace orbitwalk::tool
