#include "orbitwalk/refine/RecordWriter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "orbitwalk/RecordCheck.h"
#include "record/BorderFrames.h"

namespace orbitwalk::refine {

namespace {

using Record = __kelOBWKDXMetaData;
using Refused = std::optional<WriteRefusal>;
using Matrix = std::int32_t[9];

Refused refuse(WriteFault fault, std::string text) {
    return WriteRefusal{fault, std::move(text)};
}

/// Truncated toward zero. Nothing for what 32 bits do not hold.
std::optional<std::int32_t> fixedPoint(double value) {
    const double scaled = value * 1e6;
    if (!(std::abs(scaled) < 2147483648.0))
        return {};
    return static_cast<std::int32_t>(scaled);
}

std::int32_t saturated(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (const auto fixed = fixedPoint(value))
        return *fixed;
    return value > 0 ? Limits::max() : Limits::min();
}

/// The map from output to frame as a matrix that acts on row vectors.
Refused writeMatrix(const Placement& placement, Matrix& matrix) {
    const PicturePoint x = placement.linear({1, 0});
    const PicturePoint y = placement.linear({0, 1});
    const PicturePoint origin = placement({0, 0});
    const std::array<double, 9> elements{x.x, x.y, 0, y.x, y.y, 0, origin.x, origin.y, 1};
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const auto fixed = fixedPoint(elements[i]);
        if (!fixed)
            return refuse(WriteFault::FixedPoint, "a matrix element that does not fit");
        matrix[i] = *fixed;
    }
    return {};
}

/// Every point that a player looks up for the crop, enlarged to the frame's size edges on edges,
/// lies between the frame's outermost pixel centres.
bool covers(const Matrix& matrix, const Record& record) {
    constexpr double rounding = 1e-9;
    const auto& [x, y, width, height] = record.cropParam;
    const double overX = (1 - double(width) / record.width) / 2;
    const double overY = (1 - double(height) / record.height) / 2;
    const RenderMatrix map(matrix);
    for (const double px : {x - overX, x + width - 1 + overX})
        for (const double py : {y - overY, y + height - 1 + overY}) {
            const PicturePoint p = map.frameFromOutput({px, py});
            if (!(p.x >= -rounding && p.x <= record.width - 1 + rounding && p.y >= -rounding &&
                  p.y <= record.height - 1 + rounding))
                return false;
        }
    return true;
}

Refused writeFrame(const Placement& placement, const Record& record, const std::string& name,
                   Matrix& matrix) {
    if (Refused refusal = writeMatrix(placement, matrix))
        return refuse(refusal->fault, name + ": " + refusal->text);
    if (!covers(matrix, record))
        return refuse(WriteFault::Beyond, name + ": the crop reaches beyond the frame");
    return {};
}

Refused checkPlan(const RecordFacts& facts, const PathPlan& plan) {
    if (plan.size != facts.size)
        return refuse(WriteFault::Plan, "the plan is for frames of another size");
    if (plan.shown != shownFrames(facts))
        return refuse(WriteFault::Plan, "the plan is for other frames than those rendered");
    if (plan.corrections.size() != plan.shown.size() || plan.motions.size() != plan.shown.size())
        return refuse(WriteFault::Plan, "the plan has not one correction and motion a frame");
    return {};
}

void writeFacts(const RecordFacts& facts, const CropRectangle& crop, Record& record) {
    record.width = facts.size.width;
    record.height = facts.size.height;
    record.numFrames = static_cast<std::int32_t>(facts.renderFlags.size());
    record.startIndex = facts.startIndex;
    record.endIndex = facts.endIndex;
    record.orientation = facts.orientation;
    record.captureDirection = facts.captureDirection;
    record.cameraType = facts.cameraType;
    record.frontCameraFlipped = facts.frontCameraFlipped;
    record.maxFrames = OBW_MAX_FRAMES;
    record.viewAngleMaxFrames = OBW_MAX_BORDER_FRAMES;
    record.matrixRows = record.matrixCols = 3;
    const std::array<int, 4> sides{crop.x, crop.y, crop.width, crop.height};
    std::ranges::copy(sides, record.cropParam);
    std::ranges::copy(facts.renderFlags, record.renderFlag);
}

Refused writeFrames(const PathPlan& plan, Record& record) {
    for (int i = 0; i < record.numFrames; ++i)
        (void)writeMatrix(Placement{}, record.renderMat[i]);
    const bool alongX = record.captureDirection <= 2;
    double displacement = 0;
    for (std::size_t i = 0; i < plan.shown.size(); ++i) {
        const int frame = plan.shown[i];
        if (Refused refusal = writeFrame(plan.corrections[i].inverse(), record,
                                         "frame " + std::to_string(frame), record.renderMat[frame]))
            return refusal;
        if (i > 0)
            displacement += alongX ? plan.motions[i].x : plan.motions[i].y;
        record.scaledInputTransform[frame] = saturated(displacement);
    }
    return {};
}

/// @param sign  1 before the sweep, -1 after it: what the viewer sees is minus the crop's motion.
SimilarityTransform stepOutwards(const Placement& at, const SimilarityTransform& seen,
                                 double sign) {
    const PicturePoint shift = rotated({seen.x, seen.y}, at.angle);
    return {sign * shift.x, sign * shift.y, sign * seen.angle, 0, at.about};
}

Refused writeBorders(const PathPlan& plan, int most, Record& record) {
    if (plan.shown.size() < 2)
        return {};
    const Room room(plan.size, plan.crop);
    const auto placement = [&](std::size_t i) { return plan.corrections[i].inverse(); };
    const auto seen = [&](std::size_t i) {
        return seenMotion(placement(i - 1), plan.motions[i], placement(i));
    };
    const std::size_t last = plan.shown.size() - 1;
    auto left = comingToRest(placement(0), stepOutwards(placement(0), seen(1), 1), room, most);
    std::ranges::reverse(left);
    const auto right =
        comingToRest(placement(last), stepOutwards(placement(last), seen(last), -1), room, most);
    const auto write = [&](const std::vector<Placement>& border, std::int32_t& count,
                           Matrix* matrices) {
        for (const Placement& p : border)
            if (Refused refusal = writeFrame(p, record, "a border frame", matrices[count++]))
                return refusal;
        return Refused();
    };
    if (Refused refusal = write(left, record.leftBorderFrames, record.leftBorderMat))
        return refusal;
    return write(right, record.rightBorderFrames, record.rightBorderMat);
}

std::vector<std::byte> littleEndian(const Record& record) {
    std::array<std::uint32_t, OBW_METADATA_SIZE / 4> words;
    std::memcpy(words.data(), &record, sizeof record);
    std::vector<std::byte> bytes;
    bytes.reserve(OBW_METADATA_SIZE);
    for (const std::uint32_t word : words)
        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<std::byte>(word >> shift & 0xff));
    return bytes;
}

}  // namespace

std::vector<int> shownFrames(const RecordFacts& facts) {
    std::vector<int> shown;
    for (int i = std::max(facts.startIndex, 0);
         i <= facts.endIndex && i < std::ssize(facts.renderFlags); ++i)
        if (facts.renderFlags[i] == 1)
            shown.push_back(i);
    return shown;
}

std::variant<std::vector<std::byte>, WriteRefusal> writeRecord(const RecordFacts& facts,
                                                               const PathPlan& plan,
                                                               int mostBorderFrames) {
    if (facts.renderFlags.size() > OBW_MAX_FRAMES)
        return WriteRefusal{WriteFault::Facts, "has " + std::to_string(facts.renderFlags.size()) +
                                                   " frames, a record holds 1000"};
    if (auto refusal = checkPlan(facts, plan))
        return *std::move(refusal);
    const auto record = std::make_unique<Record>();
    writeFacts(facts, plan.crop, *record);
    if (auto refusal = writeFrames(plan, *record))
        return *std::move(refusal);
    if (auto refusal =
            writeBorders(plan, std::clamp(mostBorderFrames, 0, OBW_MAX_BORDER_FRAMES), *record))
        return *std::move(refusal);
    if (const auto refusal = orbitwalk::detail::checkRecord(*record))
        return WriteRefusal{WriteFault::Facts, refusal->text};
    return littleEndian(*record);
}

}  // namespace orbitwalk::refine
