#pragma once

/// @file
/// Writes a planned path as a motion record: layout, byte order and meaning are those of
/// orbitwalk/MetaData.h, so that every player shows it. Pure functions, as the planner's; errors
/// come back as a WriteRefusal, only std::bad_alloc is thrown, and nothing is half written.

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "orbitwalk/Export.h"
#include "orbitwalk/Geometry.h"
#include "orbitwalk/RecordReader.h"
#include "orbitwalk/refine/PathPlanner.h"

namespace orbitwalk::refine {

/// What a record holds besides the path. Each value is that of the record's field.
struct RecordFacts {
    FrameSize size;
    int startIndex = 0;
    int endIndex = 0;  ///< Inclusive; may be the number of frames.
    int orientation = 0;
    int captureDirection = 1;
    int cameraType = 1;
    int frontCameraFlipped = 0;
    std::vector<std::int32_t> renderFlags;  ///< One a recorded frame; 1: the frame is rendered.
};

/// Those of a record that there is, as the engine wrote it beside the same frames.
inline RecordFacts factsOf(const RecordReader& record) {
    const auto& raw = record.raw();
    return {{raw.width, raw.height},
            raw.startIndex,
            raw.endIndex,
            raw.orientation,
            raw.captureDirection,
            raw.cameraType,
            raw.frontCameraFlipped,
            {raw.renderFlag, raw.renderFlag + raw.numFrames}};
}

/// The frames that a player shows: flag 1, from startIndex to endIndex. For PlanOptions::shown,
/// where an empty list would mean all.
OBW_API std::vector<int> shownFrames(const RecordFacts& facts);

enum class WriteFault {
    Facts,      ///< The reader would refuse them; more than 1000 frames among others.
    Plan,       ///< Made for other frames or another size, or its parts differ in length.
    Beyond,     ///< A corrected frame does not cover the crop rectangle.
    FixedPoint  ///< A matrix element that 32 bits of millionths do not hold, or not a number.
};

struct WriteRefusal {
    WriteFault fault;
    std::string text;
};

/// The OBW_METADATA_SIZE bytes of a record, little-endian on every machine, that
/// RecordReader::open accepts.
///
/// Frames that are not shown have the identity as their matrix and the displacement 0. The
/// displacement of a shown one is the sum of the plan's motions since the first, along x for
/// directions 1 and 2 and along y for 3 and 4; beyond 2147.483647 pixels it saturates. Border
/// frames go on with the velocity that the path has at its end and slow down evenly, each axis over
/// as many frames as the room in the frame allows, to rest. Where that would brake harder than over
/// three frames there are none: the sweep then begins or ends in motion.
/// @param plan  its `shown` are shownFrames(facts). It covers the crop as planPath made it.
/// @param mostBorderFrames  on either side, 0 to 10.
OBW_API std::variant<std::vector<std::byte>, WriteRefusal> writeRecord(const RecordFacts& facts,
                                                                       const PathPlan& plan,
                                                                       int mostBorderFrames = 10);

}  // namespace orbitwalk::refine
